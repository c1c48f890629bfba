#include "RuleTables.h"

namespace {
constexpr auto kInfRules = std::to_array<Rule>({
    {
        .number = 201,
        .severity = Severity::Warning,
        .name = "an INF file in a directory that is not searched",
        .harm = "The driver package is shipped and never used.",
        .cure = "Add an InfDir line for its directory, or remove the package from the kit.",
        .why = "Only the directories of the InfDir lines are searched, without their subdirectories.",
        .bad = "InfDir=Drv\n"
               "; and the file is Drv\\Win8x64\\ngea.inf\n",
        .good = "InfDir=Drv\\Win8x64\n",
    },
    {
        .number = 202,
        .severity = Severity::Error,
        .name = "a signature that does not fit the system",
        .harm = "The file is passed over, and its adapters find no driver.",
        .cure = "Write Signature=\"$Windows NT$\" in [Version].",
        .why = "The signature must equal \"$Windows NT$\", letter case aside, on every system with a section of "
               "Morvix.ini. \"$Chicago$\", which set-up accepts everywhere, does not fit.",
        .bad = "[Version]\n"
               "Signature=\"$WindowsNT$\"\n",
        .good = "[Version]\n"
                "Signature=\"$Windows NT$\"\n",
    },
    {
        .number = 203,
        .severity = Severity::Error,
        .name = "no value of [Manufacturer] names the brand",
        .harm = "The file is passed over without a line in the trace, and its adapters find no driver.",
        .cure = "Give one value of [Manufacturer] the word Norda, NORDA or Lumarc, between commas or blanks.",
        .why = "The values are split at commas and blanks, and a part must equal one of the three words exactly.",
        .bad = "[Manufacturer]\n"
               "%Norda%=norda,NTamd64\n",
        .good = "[Manufacturer]\n"
                "%Norda%=Norda,NTamd64\n",
    },
    {
        .number = 204,
        .severity = Severity::Error,
        .name = "the brand's key comes after 98 characters of keys",
        .harm = "The key is cut off, and the file is passed over.",
        .cure = "Put the brand's line first in [Manufacturer].",
        .why = "The names of all keys of [Manufacturer] are read into a buffer of 100 bytes.",
        .bad = "A [Manufacturer] section whose earlier keys take 98 characters or more.",
        .good = "[Manufacturer]\n"
                "%Norda%=Norda,NTamd64\n"
                "%SomeOtherMaker%=Other,NTamd64\n",
    },
    {
        .number = 205,
        .severity = Severity::Warning,
        .name = "a model section that only one side names",
        .harm = "Adapters that only this section lists find no driver.",
        .cure = "Use the same name in InfSectionName and in the INF file.",
        .why = "Each name of InfSectionName is looked for in each INF file as it is written, letter case aside; "
               "[Manufacturer] is not followed.",
        .bad = "InfSectionName=Norda.NTamd64\n"
               "; and the INF file has only\n"
               "[Norda.NTamd64.6.2]\n",
        .good = "InfSectionName=Norda.NTamd64,Norda.NTamd64.6.2\n",
    },
    {
        .number = 206,
        .severity = Severity::Error,
        .name = "a model section that is there twice",
        .harm = "The search sees the lines of the first section only; set-up would merge both.",
        .cure = "Merge the sections in the file.",
        .why = "Of sections with one name the first is read.",
        .bad = "[Norda.NTamd64]\n"
               "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01\n"
               "[Norda.NTamd64]\n"
               "%B%=B.ndi, PCI\\VEN_5D1A&DEV_7A02\n",
        .good = "[Norda.NTamd64]\n"
                "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01\n"
                "%B%=B.ndi, PCI\\VEN_5D1A&DEV_7A02\n",
    },
    {
        .number = 207,
        .severity = Severity::Error,
        .name = "a section or a line that is too long",
        .harm = "Lines after the 32,765th character of the section, and IDs after the 1,999th character of a line, are "
                "not found.",
        .cure = "Split the package, or shorten the line.",
        .why = "A model section is read into 32,767 bytes and each line is copied into 2,000.",
        .bad = "A model section of more than 32,765 characters.",
        .good = "Two INF files that list half of the adapters each.",
    },
    // Lines of a model section
    {
        .number = 301,
        .severity = Severity::Warning,
        .name = "an ID that only follows another one in its line",
        .harm = "An adapter with this ID finds no driver.",
        .cure = "Give the ID a line of its own.",
        .why = "Only the first ID of a line is compared.",
        .bad = "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A99, PCI\\VEN_5D1A&DEV_7A01\n",
        .good = "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A99\n"
                "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01\n",
    },
    {
        .number = 302,
        .severity = Severity::Error,
        .name = "a first ID without its bus",
        .harm = "The line is skipped, and its adapter finds no driver.",
        .cure = "Write PCI\\ before the ID.",
        .why = "The ID begins after the first backslash of the line.",
        .bad = "%A%=A.ndi, VEN_5D1A&DEV_7A01\n",
        .good = "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01\n",
    },
    {
        .number = 303,
        .severity = Severity::Error,
        .name = "an ID of a form that is never searched",
        .harm = "No adapter matches the line.",
        .cure =
            "Use one of the four forms: device, sub-system and revision; device and sub-system; device and revision; "
            "device.",
        .why = "The name of a device's key is shortened in three steps, and an ID must equal one of the four forms.",
        .bad = "%A%=A.ndi, PCI\\VEN_5D1A&REV_03&DEV_7A01\n",
        .good = "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01&REV_03\n",
    },
    {
        .number = 304,
        .severity = Severity::Error,
        .name = "something is joined to an ID",
        .harm = "The ID is compared together with it, and no adapter matches the line.",
        .cure = "Write the ID out, followed by a blank, a comma or the end of the line.",
        .why =
            "An ID ends at a backslash, a comma or a blank. Tabs, comments, %strings% and lines that go on in the next "
            "one are set-up's business; the search does not know them.",
        .bad = "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01;first\n",
        .good = "; first\n"
                "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01\n",
    },
    {
        .number = 305,
        .severity = Severity::Warning,
        .name = "an ID of a vendor that is never accepted",
        .harm = "The line serves no adapter: devices of this vendor are passed over before any INF file is read.",
        .cure = "Remove the line, or correct the vendor number.",
        .why = "A device is served only when one of its compatible IDs is on the program's list, and all of these have "
               "the numbers of two vendors.",
        .bad = "%A%=A.ndi, PCI\\VEN_5D1B&DEV_7A01\n",
        .good = "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01\n",
    },
});
} // namespace

std::span<const Rule> RulesOfInfs()
{
    return kInfRules;
}
