#include "Effects.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

namespace {
/// What a line of an outcome says, in a word: the first row whose text is in the line.
struct Word
{
    std::string_view text;
    std::string_view word;
};

constexpr std::array kWords = std::to_array<Word>({
    {"exit code", "exit code"},
    {"does not end", "endless"},
    {"the dialog stays", "open dialog"},
    {"restart, ", "restart"},
    {"box [", "box"},
    {"control 1000", "status"},
    {"timer ", "timer"},
    {"starts <SYSTEM>\\iscsivrf.exe", "iSCSI tool"},
    {"starts Rundll.exe", "legacy helper"},
    {"stores <KIT>\\Inf\\ngeatest.inf", "first INF"},
    {"stores <KIT>\\Inf\\qdatdma.inf", "second INF"},
    {"asked: SRSetRestorePointW event=102", "restore point"},
    {"asked: SRSetRestorePointW event=103", "its end"},
    {"asked: CM_", "rescan"},
    {"asked: NORDA_", "FCoE library"},
    {"asked: HBA_", "FCoE library"},
    {"asked: CloseAdapter", "FCoE library"},
    {"asked: GetIScsiVersionInformation", "iSCSI version"},
    {"asked: UpdateDriverForPlugAndPlayDevicesA", "first device"},
    {"asked: InstallForRecord family=[Windows Vista] inf=[<KIT-UPPER>\\INF\\NGEATEST.INF]", "first device"},
    {"asked: InstallForRecord family=[Windows Vista] inf=[<KIT-UPPER>\\INF\\QDATDMA.INF]", "second device"},
    {"asked: ", "NetInst"},
    {"_Install type", "family Install"},
    {"_Version type", "family Version"},
    {"\\\\Install type", "Install"},
    {"\\\\Version type", "Version"},
    {"\\\\RebootNeeded", "RebootNeeded"},
    {"\\\\Reboot ", "Reboot"},
    {"\\\\RegPCIpath", "RegPCIpath"},
    {"\\\\Tavunstl_source_path", "source path"},
    {"\\\\Morvix.din", "registration"},
    {"left: uninstall file", "uninstall file"},
    {"left: pending ", "pending uninstall"},
    {"left: staged <KIT>", "staged file"},
    {"left: staged <WINDOWS>", "staged aside"},
});

constexpr std::string_view kTrace = "trace: ";
constexpr std::string_view kOpen = "still open: ";

std::string WordFor(const std::string& line)
{
    if (line.starts_with(kOpen)) {
        return "open " + line.substr(kOpen.size());
    }
    const auto* const row =
        std::ranges::find_if(kWords, [&](const Word& word) { return line.find(word.text) != std::string::npos; });
    return row == kWords.end() ? line : std::string(row->word);
}

std::map<std::string, int> CountsOf(const Outcome& outcome)
{
    std::map<std::string, int> counts;
    for (const std::string& line : outcome.lines) {
        if (!line.starts_with(kTrace)) {
            ++counts[line];
        }
    }
    return counts;
}
} // namespace

std::string EffectsOf(const Outcome& clean, const Outcome& faulted)
{
    std::map<std::string, int> difference = CountsOf(faulted);
    for (const auto& [line, count] : CountsOf(clean)) {
        difference[line] -= count;
    }
    std::map<std::string, std::pair<bool, bool>> changes; // word: lost, gained
    for (const auto& [line, count] : difference) {
        if (count > 0) {
            changes[WordFor(line)].second = true;
        } else if (count < 0 && !line.starts_with(kOpen)) {
            changes[WordFor(line)].first = true;
        }
    }
    std::string text;
    for (const auto& [word, change] : changes) {
        const auto& [lost, gained] = change;
        text += (text.empty() ? "" : ", ") + std::string(lost && gained ? "~" : lost ? "-" : "+") + word;
    }
    return text;
}

bool TracesMore(const Outcome& clean, const Outcome& faulted, const std::string& text)
{
    const auto count = [&](const Outcome& outcome) {
        return std::ranges::count_if(
            outcome.lines, [&](const std::string& line) { return line.starts_with(std::string(kTrace) + text); });
    };
    return count(faulted) > count(clean);
}

std::string Describe(const CallName& call)
{
    return (call.thread == CallThread::Main ? "main " : "install ") + call.function + "(" + call.label + ")";
}

bool ComesByChance(const CallName& call)
{
    static const std::vector<std::string> kFunctions = {"GetMessageA", "IsDialogMessageA", "GetDlgItem",
                                                        "MsgWaitForMultipleObjects"};
    return call.thread == CallThread::Main && std::ranges::find(kFunctions, call.function) != kFunctions.end();
}
