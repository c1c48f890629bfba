#include "RuleTables.h"

namespace {
constexpr auto kResultRules = std::to_array<Rule>({
    {
        .number = 401,
        .severity = Severity::Warning,
        .name = "the newer of two drivers loses",
        .harm = "Adapters with this ID get the older driver.",
        .cure = "Put the newer driver's InfDir line first, or remove the older driver.",
        .why = "The first directory with an ID wins; DriverVer is not read.",
        .bad = "InfDir=Old\n"
               "InfDir=New\n",
        .good = "InfDir=New\n"
                "InfDir=Old\n",
    },
    {
        .number = 402,
        .severity = Severity::Warning,
        .name = "an older special INF beats a newer general one",
        .harm = "Adapters with the longer ID get the older driver.",
        .cure = "Add the longer ID to the newer INF file, or remove it from the older one.",
        .why = "A longer form of the ID is searched in all directories before a shorter one.",
        .bad = "; old.inf, 1.0.0.0: PCI\\VEN_5D1A&DEV_7A01&SUBSYS_00115D1A\n"
               "; new.inf, 2.0.0.0: PCI\\VEN_5D1A&DEV_7A01\n",
        .good = "; new.inf, 2.0.0.0: both IDs\n",
    },
    {
        .number = 403,
        .severity = Severity::Warning,
        .name = "the winner depends on the order of the directory",
        .harm = "On FAT, on shares and on optical media another driver can win than on NTFS.",
        .cure = "Let one INF file of the directory list the ID.",
        .why = "Within a directory the first file that lists the ID wins, in the order of the file system.",
        .bad = "; Drv\\a.inf and Drv\\b.inf list PCI\\VEN_5D1A&DEV_7A01\n",
        .good = "; only Drv\\a.inf lists PCI\\VEN_5D1A&DEV_7A01\n",
    },
    {
        .number = 404,
        .severity = Severity::Warning,
        .name = "one file name in two directories",
        .harm = "Only the first of the two files is added to the driver store.",
        .cure = "Give the files different names.",
        .why = "Each file name is handed to the driver store once in a run.",
        .bad = "InfDir=A\n"
               "InfDir=B\n"
               "; with A\\ngea.inf and B\\ngea.inf\n",
        .good = "; with A\\ngea.inf and B\\ngeb.inf\n",
    },
    {
        .number = 405,
        .severity = Severity::Error,
        .name = "set-up will use another section than the one found",
        .harm = "The driver is not installed, or another one than the match says.",
        .cure = "Let [Manufacturer] name the decorations of the sections in InfSectionName, and no better one for this "
                "system.",
        .why = "The search takes the section from InfSectionName. Set-up follows [Manufacturer] to the decoration that "
               "fits the system best.",
        .bad = "[Manufacturer]\n"
               "%Norda%=Norda,NTx86\n"
               "[Norda.NTamd64]\n"
               "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01\n",
        .good = "[Manufacturer]\n"
                "%Norda%=Norda,NTamd64\n"
                "[Norda.NTamd64]\n"
                "%A%=A.ndi, PCI\\VEN_5D1A&DEV_7A01\n",
    },
    // The result and the files
    {
        .number = 501,
        .severity = Severity::Warning,
        .name = "the name of an INF file belongs to no driver family",
        .harm = "Its drivers are installed, and no result value is written.",
        .cure = "Begin the file's name with the prefix of its family, such as ngea.",
        .why = "The result's name comes from the first letters of the file's name.",
        .bad = "Drv\\nic99.inf",
        .good = "Drv\\ngea99.inf",
    },
    {
        .number = 502,
        .severity = Severity::Error,
        .name = "no copied file fits the pattern of the family",
        .harm = "The result is always FAILURE, although the driver is installed.",
        .cure = "Name the driver file after the family; for Windows 7 and Server 2008 R2 with 62 after the prefix.",
        .why = "The result is SUCCESS when system32\\drivers holds a file such as ngea*.sys, or ngea62*.sys on 6.1.",
        .bad = "; for Windows 7: ngea.inf copies ngea.sys\n",
        .good = "; for Windows 7: ngea.inf copies ngea62x64.sys\n",
    },
    {
        .number = 503,
        .severity = Severity::Warning,
        .name = "several driver files fit the pattern of the family",
        .harm = "The version of another file than the installed one can be reported.",
        .cure = "Give the driver file one name in all packages of the family.",
        .why = "The first file that fits is looked at, and files of earlier drivers stay where they are.",
        .bad = "; ngea.inf copies ngea6232.sys and ngea62x64.sys\n",
        .good = "; ngea.inf copies ngea62x64.sys\n",
    },
    {
        .number = 504,
        .severity = Severity::Error,
        .name = "a file that the INF copies is missing",
        .harm = "Set-up refuses the driver: the result is FAILURE.",
        .cure = "Add the file where [SourceDisksFiles] and [SourceDisksNames] say that it is.",
        .why = "Set-up copies every file of the CopyFiles sections from the package.",
        .bad = "[Nic.Copy]\n"
               "ngea.sys\n"
               "; and the package holds no ngea.sys\n",
        .good = "; the package holds ngea.sys beside the INF file\n",
    },
    {
        .number = 505,
        .severity = Severity::Warning,
        .name = "a package for x64 without a catalog",
        .harm = "Windows Vista and later refuse the driver.",
        .cure = "Add the catalog, name it in CatalogFile of [Version], and sign it.",
        .why = "64-bit Windows loads a driver only when a signed catalog holds its files. Whether the catalog is "
               "signed is not examined.",
        .bad = "[Version]\n"
               "Signature=\"$Windows NT$\"\n",
        .good = "[Version]\n"
                "Signature=\"$Windows NT$\"\n"
                "CatalogFile=ngea.cat\n",
    },
    {
        .number = 506,
        .severity = Severity::Error,
        .name = "a path of more than 255 characters",
        .harm = "The match is lost on its way to the installation: no driver and no result value.",
        .cure = "Shorten the folders of the kit.",
        .why = "The install record has 256 bytes for the path.",
        .bad = "A path of the INF file, on the machine, of more than 255 characters.",
        .good = "InfDir=Drv\\Win8x64\n",
    },
    {
        .number = 507,
        .severity = Severity::Warning,
        .name = "the driver file stays in the driver store",
        .harm = "The result is FAILURE although the driver runs.",
        .cure = "Copy the driver file to directory 12.",
        .why = "The result rests on a file in system32\\drivers; directory 13 is the package's folder in the driver "
               "store.",
        .bad = "[DestinationDirs]\n"
               "DefaultDestDir=13\n",
        .good = "[DestinationDirs]\n"
                "DefaultDestDir=12\n",
    },
    // Where the answer depends on the reader or the file system
    {
        .number = 601,
        .severity = Severity::Warning,
        .name = "readers disagree about this file",
        .harm = "A machine can read the file differently from the one on which the kit was tried.",
        .cure = "Write the file in a form that both read alike: see the line that is named.",
        .why = "Unclosed brackets, byte-order marks, UTF-16 in big-endian order and tabs are read differently by "
               "Windows and by Wine.",
        .bad = "[Win832E\n"
               "InfDir=Drivers\n",
        .good = "[Win832E]\n"
                "InfDir=Drivers\n",
    },
    {
        .number = 602,
        .severity = Severity::Warning,
        .name = "names that a file system can confuse",
        .harm = "A file is found, or not found, depending on the file system of the medium.",
        .cure = "Remove files such as .infx and .inf_old, and names that differ in letter case only.",
        .why = "A search for *.inf also finds longer endings by their short names, where the file system makes them.",
        .bad = "Drv\\ngea.inf_old",
        .good = "Drv\\ngea.inf",
    },
    {
        .number = 701,
        .severity = Severity::Note,
        .name = "an accepted device that no INF file lists",
        .harm = "Adapters with this ID are recognised on this system and get no driver.",
        .cure = "Nothing, when the system is not meant to serve them; otherwise add the driver package.",
        .why = "The program accepts some devices by their own IDs, and other systems of the kit list them.",
        .bad = "; Win732E lists PCI\\VEN_5D1A&DEV_2A10, Win832E does not\n",
        .good = "; both list PCI\\VEN_5D1A&DEV_2A10\n",
    },
});
} // namespace

std::span<const Rule> RulesOfResults()
{
    return kResultRules;
}
