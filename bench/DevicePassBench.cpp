#include <windows.h>
// psapi.h needs windows.h first.
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "CallCount.h"
#include "DevicePass.h"
#include "DevicePassState.h"
#include "InfStore.h"
#include "Kit.h"
#include "LangString.h"
#include "LocationInfo.h"
#include "PlatformKit.h"
#include "Trace.h"

// Times device passes over kits of INF files and prints one line of tab-separated fields for each measurement:
//   unmatched files adapters passes way milliseconds profile reads file opens registry opens matched the same, of
//   adapters that are found in pass "passes" in the last file memory files kB of the program's highest working set so
//   far question microseconds that one try of the trace's key takes store files new or there milliseconds that the
//   platform's INF store takes for its copies "way" is plain or reuse. The ways alternate, so that other load on the
//   machine affects both. Usage: bench_pass <folder of the shipped files> [profile] With "profile" it runs twenty
//   passes over one kit and prints nothing, for a profiler.

namespace {
constexpr int kSearchPasses = 4;

/// Calls to the system, wherever they come from.
class Counts
{
public:
    void Start()
    {
        m_profileStart = Profile();
        m_fileStart = Files();
        m_registryStart = Registry();
    }
    [[nodiscard]] uint64_t ProfileReads() const { return Profile() - m_profileStart; }
    [[nodiscard]] uint64_t FileOpens() const { return Files() - m_fileStart; }
    [[nodiscard]] uint64_t RegistryOpens() const { return Registry() - m_registryStart; }

private:
    [[nodiscard]] uint64_t Profile() const { return m_texts.Calls() + m_sections.Calls(); }
    [[nodiscard]] uint64_t Files() const { return m_createFile.Calls() + m_openFile.Calls(); }
    [[nodiscard]] uint64_t Registry() const { return m_openKey.Calls(); }

    // Only the system itself is below kernelbase.
    HMODULE m_base = GetModuleHandleA("kernelbase.dll");
    CallCount m_texts{"GetPrivateProfileStringA"};
    CallCount m_sections{"GetPrivateProfileSectionA"};
    CallCount m_createFile{"NtCreateFile", m_base};
    CallCount m_openFile{"NtOpenFile", m_base};
    CallCount m_openKey{"NtOpenKeyEx", m_base};
    uint64_t m_profileStart = 0;
    uint64_t m_fileStart = 0;
    uint64_t m_registryStart = 0;
};

double Now()
{
    LARGE_INTEGER ticks{};
    LARGE_INTEGER ticksPerSecond{};
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&ticksPerSecond);
    return static_cast<double>(ticks.QuadPart) * 1000 / static_cast<double>(ticksPerSecond.QuadPart);
}

const char* NameOf(bool plainWay)
{
    return plainWay ? "plain" : "reuse";
}

/// @return milliseconds of one device pass.
double TimePass(bool plainWay)
{
    DevicePassState = {};
    DriverInstallRecord record;
    std::ranges::copy(kFamilyWindowsVista, record.osFamily.begin());
    const auto noProgress = [](const std::string& /*text*/) {};
    const double start = Now();
    // The plain way asks the platform every time. The product has no such switch.
    PlatformKit platform;
    const uint32_t result = plainWay ? RunDevicePassOver(platform, record, nullptr, noProgress)
                                     : RunDevicePass(record, nullptr, noProgress);
    if (result != 0) {
        throw std::runtime_error("the device pass cannot run here");
    }
    return Now() - start;
}

/// Every INF counts as already in the platform's INF store, which is measured separately.
void UseKit(const Kit& kit)
{
    LocationInfo.setupDir = kit.Directory();
    CopiedInfList.names = kit.FileNames();
}

struct Row
{
    const char* kind = "";
    int files = 0;
    int adapters = 0;
    int passes = 0;
};

void MeasurePasses(Counts& counts, const Row& row, int rounds, int plainRounds)
{
    // The first read of a kit's files also loads them into the cache.
    TimePass(false);
    for (int round = 0; round < rounds; ++round) {
        for (const bool plainWay : {true, false}) {
            if (plainWay && round >= plainRounds) {
                continue;
            }
            counts.Start();
            const double milliseconds = TimePass(plainWay);
            std::printf("%s\t%d\t%d\t%d\t%s\t%.3f\t%llu\t%llu\t%llu\n", row.kind, row.files, row.adapters, row.passes,
                        NameOf(plainWay), milliseconds, counts.ProfileReads(), counts.FileOpens(),
                        counts.RegistryOpens());
            std::fflush(stdout);
        }
    }
}

/// Adapters that no INF lists: all passes search for each.
void MeasureUnmatched(Counts& counts)
{
    for (const int files : {10, 100, 400}) {
        const Kit kit(files);
        UseKit(kit);
        for (const int adapterCount : {1, 8, 32}) {
            const Adapters adapters(adapterCount);
            // With the largest kits the plain way takes minutes: it is timed once.
            constexpr int kRounds = 3;
            constexpr int kVisitsForThePlainWay = 10'000;
            const int visits = files * adapterCount * kSearchPasses;
            MeasurePasses(counts, {"unmatched", files, adapterCount, kSearchPasses}, kRounds,
                          std::clamp(kVisitsForThePlainWay / visits, 1, kRounds));
        }
        PROCESS_MEMORY_COUNTERS memory{};
        GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
        std::printf("memory\t%d\t%llu\n", files, memory.PeakWorkingSetSize / 1024);
    }
}

/// Adapters that the last INF lists by an ID that only pass `pass` looks for.
void MeasureMatchedIn(Counts& counts, int pass)
{
    constexpr int kFiles = 100;
    constexpr int kAdapters = 8;
    const Adapters adapters(kAdapters);
    std::vector<std::string> ids;
    for (const std::string& name : adapters.KeyNames()) {
        const std::string device = name.substr(0, name.find("&SUBSYS"));
        const std::string revision = name.substr(name.find("&REV"));
        const std::vector<std::string> idOfPass{name, name.substr(0, name.find("&REV")), device + revision, device};
        ids.push_back(idOfPass[static_cast<std::size_t>(pass) - 1]);
    }
    const Kit kit(kFiles, ids);
    UseKit(kit);
    MeasurePasses(counts, {"matched", kFiles, kAdapters, pass}, 3, 1);
    if (!DevicePassState.deviceMatched) {
        throw std::runtime_error("the adapters should match");
    }
}

/// The one call that every trace line makes, regardless of reuse.
void MeasureQuestion()
{
    constexpr int kTimes = 20'000;
    const double start = Now();
    for (int i = 0; i < kTimes; ++i) {
        Trace("");
    }
    std::printf("question\t%.2f\n", (Now() - start) * 1000 / kTimes);
}

/// The cost of the platform's INF store, once per INF and run: a pass of one adapter with and without it.
void MeasureStore()
{
    for (const int files : {10, 100, 400}) {
        const Kit kit(files);
        const Adapters adapters(1);
        UseKit(kit);
        const double without = TimePass(false);
        CopiedInfList = {};
        std::printf("store\t%d\tnew\t%.3f\n", files, TimePass(false) - without);
        CopiedInfList = {};
        std::printf("store\t%d\tthere\t%.3f\n", files, TimePass(false) - without);
        std::fflush(stdout);
    }
}

void RunForProfiler()
{
    const Kit kit(100);
    const Adapters adapters(8);
    UseKit(kit);
    for (int i = 0; i < 20; ++i) {
        TimePass(false);
    }
}

int RunBench(const std::string& shipped, bool forProfiler)
{
    resourceModule = LoadLibraryA((shipped + R"(\MorvixRes.dll)").c_str());
    if (resourceModule == nullptr) {
        throw std::runtime_error("no MorvixRes.dll in " + shipped);
    }
    if (forProfiler) {
        RunForProfiler();
        return 0;
    }
    MeasureQuestion();
    Counts counts;
    MeasureUnmatched(counts);
    for (int pass = 1; pass <= kSearchPasses; ++pass) {
        MeasureMatchedIn(counts, pass);
    }
    MeasureStore();
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    try {
        const bool forProfiler = argc == 3 && argv[2] == std::string("profile");
        return argc == 2 || forProfiler ? RunBench(argv[1], forProfiler) : 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
