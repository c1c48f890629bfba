#include "DeviceSearch.h"

#include <optional>
#include <string_view>
#include <vector>

#include "DriverInstallRecord.h"
#include "InfDirectory.h"
#include "KitLists.h"
#include "SearchIds.h"
#include "UpperCase.h"

namespace {
constexpr std::string_view kDmaEngineInf = "QDATDMA.INF";

/// A path of more than 255 characters does not fit into the record: its field is then empty, and the install goes on
/// with that.
std::string PathForRecord(const std::string& infPath, LeadByteTest isLeadByte)
{
    if (infPath.size() >= sizeof(DriverInstallRecord::infPath)) {
        return {};
    }
    std::string path = infPath;
    MakeUpperCase(path, isLeadByte);
    return path;
}

DeviceMatch MatchOf(const KitSearch& search, int pass, const std::string& infPath)
{
    search.log.Say("!!FOUND INF MATCH\n");
    DeviceMatch match{.verdict = SearchVerdict::Matched,
                      .pass = pass,
                      .infPath = infPath,
                      .recordPath = PathForRecord(infPath, search.isLeadByte)};
    match.isDmaEngine = match.recordPath.find(kDmaEngineInf) != std::string::npos;
    if (match.isDmaEngine) {
        search.log.Say("QDATINSTALLED\n");
    }
    return match;
}

struct InfLists
{
    std::vector<std::string> directories;
    std::vector<std::string> excludes;
};

/// @return the INF of the first directory that has one for the ID.
std::optional<std::string> FindInDirectories(const KitSearch& search, const std::string& searchId,
                                             const InfLists& lists)
{
    for (const std::string& directory : lists.directories) {
        search.log.Say(directory);
        if (std::optional<std::string> infPath = FindInf(search, searchId, directory, lists.excludes)) {
            return infPath;
        }
    }
    return std::nullopt;
}

/// Runs the passes up to the first that finds an INF, or whose ID cannot be formed.
DeviceMatch RunPasses(const KitSearch& search, const std::string& deviceId, const InfLists& lists)
{
    std::string searchId = deviceId;
    for (int pass = kFirstSearchPass; pass <= kLastSearchPass; ++pass) {
        const SearchPass plan = PlanPass(deviceId, pass);
        switch (plan.verdict) {
            case PassVerdict::OwnId:
                searchId = plan.searchId;
                if (pass != kFirstSearchPass) {
                    search.log.Say(searchId);
                    search.log.Say("Pass ", std::to_string(pass));
                }
                break;
            case PassVerdict::IdOfThePassBefore:
                break;
            case PassVerdict::Fault:
                return {.verdict = SearchVerdict::Fault, .pass = pass, .infPath = {}, .recordPath = {}};
        }
        search.log.PassBegins(pass, searchId);
        if (const std::optional<std::string> infPath = FindInDirectories(search, searchId, lists)) {
            return MatchOf(search, pass, *infPath);
        }
    }
    return {.verdict = SearchVerdict::NoInf, .pass = kLastSearchPass, .infPath = {}, .recordPath = {}};
}
} // namespace

DeviceMatch SearchForDevice(const KitSearch& search, const std::string& deviceId)
{
    search.source.BeginDevice();
    search.log.Say("device: ", deviceId, "\n");
    InfLists lists;
    ReadInfLists(search, lists.directories, lists.excludes);
    return RunPasses(search, deviceId, lists);
}
