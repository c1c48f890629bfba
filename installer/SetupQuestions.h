#pragma once

/// Makes the platform's set-up functions fail in this process where they would ask the user, such as for an unsigned
/// driver package or a missing disk. It applies to NetInst.dll too. Holds for the rest of the process.
void RefuseSetupQuestions();
