// Stands in for a NetInst.dll of the wrong kind: it loads, but does not hand out class factories.

#include "Journal.h"

extern "C" __declspec(dllexport) void SomethingElse()
{
    WriteJournal("SomethingElse");
}
