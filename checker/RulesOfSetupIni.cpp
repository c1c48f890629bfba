#include "RuleTables.h"

namespace {
constexpr auto kSetupIniRules = std::to_array<Rule>({
    {
        .number = 101,
        .severity = Severity::Error,
        .name = "a served system has no section",
        .harm = "On this system no adapter finds a driver, and the run reports no error.",
        .cure = "Add the system's section, or say with --system which systems the kit is made for.",
        .why = "Each system reads the section of its own name; there is no section for everything else.",
        .bad = "; Morvix.ini without [Win732E], asked about Windows 7 x64\n"
               "[Win832E]\n"
               "InfSectionName=Norda.NTamd64\n"
               "InfDir=Drv\\Win8x64\n",
        .good = "[Win732E]\n"
                "InfSectionName=Norda.NTamd64.6.1\n"
                "InfDir=Drv\\Win7x64\n"
                "[Win832E]\n"
                "InfSectionName=Norda.NTamd64\n"
                "InfDir=Drv\\Win8x64\n",
    },
    {
        .number = 102,
        .severity = Severity::Error,
        .name = "a section of more than 518 characters",
        .harm = "Directories after the 518th character of the section are not searched, and the one at the cut is cut.",
        .cure = "Shorten the directories, or move the base up with LevelsToRoot.",
        .why = "The buffer for a section grows once, to 520 bytes. All lines of the section count, also those of "
               "InfSectionName and InfExclude, with one character for each line end.",
        .bad = "[Win832E]\n"
               "InfSectionName=Norda.NTamd64\n"
               "InfDir=Drivers for the adapters of the first generation\\Windows 8 x64\\one\n"
               "; six more lines of this length\n"
               "InfDir=Drivers\n",
        .good = "[Config]\n"
                "LevelsToRoot=1\n"
                "[Win832E]\n"
                "InfSectionName=Norda.NTamd64\n"
                "InfDir=Gen1\\Win8x64\\one\n"
                "InfDir=Drivers\n",
    },
    {
        .number = 103,
        .severity = Severity::Warning,
        .name = "exclusions after 1022 characters",
        .harm = "Files that are excluded after the 1022nd character of the section are installed all the same.",
        .cure = "Take the files out of the kit instead of excluding them.",
        .why = "Exclusions are read into a buffer of 1024 bytes, together with all other lines of the section.",
        .bad = "A section in which an InfExclude line begins after 1022 characters.",
        .good = "[Win832E]\n"
                "InfSectionName=Norda.NTamd64\n"
                "InfDir=Drv\\Win8x64\n"
                "InfExclude=old.inf\n",
    },
    {
        .number = 104,
        .severity = Severity::Error,
        .name = "names of model sections missing or too long",
        .harm = "No line of any INF file is compared, or names after the 259th character are lost.",
        .cure = "List the model sections of this system in InfSectionName, in at most 259 characters.",
        .why = "The value is read into a buffer of 260 bytes. Without a name no model section is searched.",
        .bad = "[Win832E]\n"
               "InfDir=Drv\\Win8x64\n",
        .good = "[Win832E]\n"
                "InfSectionName=Norda.NTamd64\n"
                "InfDir=Drv\\Win8x64\n",
    },
    {
        .number = 105,
        .severity = Severity::Error,
        .name = "a directory that begins with a full stop",
        .harm = "The base itself is searched instead of the directory.",
        .cure = "Write the directory without the full stops, or move the base up with LevelsToRoot.",
        .why = "Everything after a leading full stop is discarded.",
        .bad = "InfDir=..\\Drivers\n",
        .good = "InfDir=Drivers\n",
    },
    {
        .number = 106,
        .severity = Severity::Error,
        .name = "a directory on a network share",
        .harm = "Two leading backslashes are read as a path on the program's own drive, so the share is not searched.",
        .cure = "Put the driver packages below the kit and start the whole kit from the share.",
        .why = "A directory that begins with a backslash is taken from the root of the program's drive.",
        .bad = "InfDir=\\\\server\\drivers\n",
        .good = "InfDir=Drivers\n",
    },
    {
        .number = 107,
        .severity = Severity::Error,
        .name = "a directory in quotation marks",
        .harm = "The quotation marks are part of the directory's name, so nothing is found.",
        .cure = "Write the directory without quotation marks; blanks need none.",
        .why = "The lines of a section are read as they are; only single values lose their quotation marks.",
        .bad = "InfDir=\"Drivers for x64\"\n",
        .good = "InfDir=Drivers for x64\n",
    },
    {
        .number = 108,
        .severity = Severity::Warning,
        .name = "a comment after a value",
        .harm = "The comment is part of the value: the directory, the file or the section of that name does not exist.",
        .cure = "Put the comment in a line of its own that begins with a semicolon.",
        .why = "A semicolon begins a comment only at the beginning of a line.",
        .bad = "InfDir=Drivers ; for x64\n",
        .good = "; for x64\n"
                "InfDir=Drivers\n",
    },
    {
        .number = 109,
        .severity = Severity::Warning,
        .name = "a line that is not what it seems",
        .harm =
            "A marker in other letters is ignored, and one with text before it counts, so another directory or file "
            "than the one meant is used.",
        .cure = "Write InfDir= and InfExclude= exactly so, at the beginning of the line; switch a line off with a "
                "semicolon.",
        .why = "Lines are searched for the text \"InfDir=\", wherever it is in the line and in these letters only. Its "
               "last occurrence counts.",
        .bad = "infdir=Drivers\n"
               "NotNow_InfDir=Old\n",
        .good = "InfDir=Drivers\n"
                ";InfDir=Old\n",
    },
    {
        .number = 110,
        .severity = Severity::Warning,
        .name = "a blank beside a comma of InfSectionName",
        .harm = "The blank is part of the name, so that model section is not found.",
        .cure = "Write the names without blanks around the commas.",
        .why = "The value is split at its commas and nothing else.",
        .bad = "InfSectionName=Norda.NTamd64 ,Other\n",
        .good = "InfSectionName=Norda.NTamd64,Other\n",
    },
    {
        .number = 111,
        .severity = Severity::Error,
        .name = "a directory that is missing or holds no INF file",
        .harm = "The search passes over the directory without a message, and its adapters find no driver.",
        .cure = "Correct the name, add the driver package, or remove the line.",
        .why =
            "A directory that cannot be listed ends its own search and nothing else. Subdirectories are not searched.",
        .bad = "InfDir=Drv\\Win8x46\n",
        .good = "InfDir=Drv\\Win8x64\n",
    },
    {
        .number = 112,
        .severity = Severity::Warning,
        .name = "LevelsToRoot cannot be used",
        .harm = "Relative directories begin at another place than the one meant.",
        .cure = "Write a whole number that is not larger than the number of folders above the program.",
        .why =
            "The value is read up to its first character that is no digit; a number over 260 counts as 0, and no level "
            "above the drive exists.",
        .bad = "[Config]\n"
               "LevelsToRoot=one\n",
        .good = "[Config]\n"
                "LevelsToRoot=1\n",
    },
    {
        .number = 113,
        .severity = Severity::Warning,
        .name = "an exclusion that excludes nothing",
        .harm = "The file that was to be left out is installed.",
        .cure = "Name the file exactly, without a directory and without a pattern.",
        .why = "Exclusions are compared with whole file names; letter case does not count for the letters A to Z.",
        .bad = "InfExclude=Drv\\old*.inf\n",
        .good = "InfExclude=old.inf\n",
    },
});
} // namespace

std::span<const Rule> RulesOfSetupIni()
{
    return kSetupIniRules;
}
