#include "Kits.h"

#include <gtest/gtest.h>

#include <stdexcept>

KitFiles PerfectKit()
{
    return {{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=Drv\n")},
            {kPerfectInf, InfWithModels(Model("VEN_5D1A&DEV_7A01"))},
            {"Drv/ngea.sys", "driver"},
            {"Drv/ngea.cat", "catalog"}};
}

KitFiles KitWith(const KitFiles& changes)
{
    KitFiles files = PerfectKit();
    for (const auto& [name, text] : changes) {
        files[name] = text;
    }
    std::erase_if(files, [](const auto& file) { return file.second.empty(); });
    return files;
}

std::string Changed(std::string text, std::string_view from, std::string_view to)
{
    const std::size_t place = text.find(from);
    if (place == std::string::npos) {
        throw std::logic_error("the text has no " + std::string(from));
    }
    return text.replace(place, from.size(), to);
}

std::string Ini(const std::string& lines)
{
    return "[Win832E]\n" + lines;
}

std::string InfWithModels(const std::string& lines)
{
    return "[Version]\nSignature=\"$Windows NT$\"\nClass=Net\nDriverVer=10/01/2012,2.0.0.0\nCatalogFile=ngea.cat\n"
           "[Manufacturer]\n%Norda%=Norda,NTamd64\n[Norda.NTamd64]\n" +
           lines +
           "[Nic.ndi]\nCopyFiles=Nic.Files\n[Nic.Files]\nngea.sys\n[DestinationDirs]\nDefaultDestDir=12\n"
           "[SourceDisksNames]\n1=%Disk%\n[SourceDisksFiles]\nngea.sys=1\n"
           "[Strings]\nNorda=\"Norda\"\nNic=\"Norda adapter\"\nDisk=\"Disk\"\n";
}

std::string Model(const std::string& rest)
{
    return "%Nic%=Nic.ndi, PCI\\" + rest + "\n";
}

void WriteKit(const TestFolder& folder, const KitFiles& files)
{
    for (const auto& [name, text] : files) {
        folder.Write(name, text);
    }
}

KitFindings FindingsIn(const TestFolder& folder, const std::vector<std::string>& systems, Readers readers)
{
    KitFolder kit(PlaceOf(folder), readers == Readers::Wine ? ProfileDialect::Wine : ProfileDialect::Windows);
    KitFolder other(PlaceOf(folder), ProfileDialect::Wine);
    return CheckKit(kit, readers == Readers::Both ? &other : nullptr, {.systems = systems});
}

std::vector<std::string> FoundIn(const KitFiles& files, const std::vector<std::string>& systems, Readers readers)
{
    const TestFolder folder;
    WriteKit(folder, files);
    std::vector<std::string> found;
    for (const Finding& finding : FindingsIn(folder, systems, readers).findings) {
        found.push_back(IdOf(RuleOf(finding)) + " " + finding.file + ":" + std::to_string(finding.line) + ":" +
                        std::to_string(finding.column));
    }
    return found;
}

void ExpectRows(const std::vector<KitRow>& rows)
{
    for (const KitRow& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.expected, FoundIn(KitWith(row.changes), row.systems));
    }
}
