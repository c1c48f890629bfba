// How files that are only read are opened: other readers are not disturbed.

#include <gmock/gmock.h>
#include <windows.h>

#include "FileOpens.h"
#include "Handles.h"
#include "InfReader.h"
#include "OSVersion.h"
#include "ScratchDirectory.h"

using testing::ElementsAre;

TEST(FileOpening, TheMarkOfAnInfIsReadThroughAnOpenForReadingThatSharesReading)
{
    const ScratchDirectory directory;
    const std::string inf = directory.At("tav1.inf");
    WriteFileBytes(inf, "\xFF\xFE");
    const FileOpens opens;
    EXPECT_EQ(IsFileUnicode(inf), 1);
    EXPECT_THAT(opens.Calls(), ElementsAre(FileOpens::Call{.name = inf,
                                                           .access = GENERIC_READ,
                                                           .sharing = FILE_SHARE_READ,
                                                           .disposition = OPEN_EXISTING,
                                                           .flags = FILE_ATTRIBUTE_NORMAL}));
}

TEST(FileOpening, AnInfThatSomebodyReadsIsReadAndOneThatSomebodyWritesIsNot)
{
    const ScratchDirectory directory;
    const std::string inf = directory.At("tav1.inf");
    WriteFileBytes(inf, "\xFF\xFE");
    {
        const UniqueFile reader(
            CreateFileA(inf.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(reader.IsOpen());
        EXPECT_EQ(IsFileUnicode(inf), 1);
    }
    const UniqueFile writer(
        CreateFileA(inf.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(writer.IsOpen());
    EXPECT_EQ(IsFileUnicode(inf), 0);
}

TEST(FileOpening, TheShellIsLookedForByAnOpenForReadingThatSharesReading)
{
    const ScratchDirectory directory;
    WriteFileBytes(directory.At("shell.exe"), "x");
    const FileOpens opens;
    EXPECT_TRUE(CanOpenExpanded(directory.At("shell.exe")));
    ASSERT_EQ(opens.Calls().size(), 1U);
    EXPECT_EQ(opens.Calls()[0].access, DWORD{GENERIC_READ});
    EXPECT_EQ(opens.Calls()[0].sharing, DWORD{FILE_SHARE_READ});
    EXPECT_EQ(opens.Calls()[0].disposition, DWORD{OPEN_EXISTING});
}
