#include "PlanTrace.h"

#include <gtest/gtest.h>

#include <fstream>

#include "KitOnDisk.h"
#include "Planner.h"

namespace {
std::vector<std::string> LinesIn(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end - start));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

void Replace(std::string& text, std::string_view what, std::string_view with)
{
    for (std::size_t place = text.find(what); place != std::string::npos;
         place = text.find(what, place + with.size())) {
        text.replace(place, what.size(), with);
    }
}

/// The device pass in the trace of a real run of the shipped program, as the tests of whole runs keep it.
std::vector<std::string> KeptDevicePass(const std::string& name)
{
    std::ifstream file(std::string(MORVIX_SOURCE_FOLDER) + "/tests/e2e/traces/" + name);
    std::vector<std::string> pass;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        inside = inside || line.find("enumerating registry for devices...") != std::string::npos;
        if (!inside) {
            continue;
        }
        if (line.ends_with("<LF>")) {
            line.resize(line.size() - 4);
        }
        Replace(line, "<KIT>", R"(C:\Kit)");
        Replace(line, "<KIT-UPPER>", R"(C:\KIT)");
        pass.push_back(line);
        if (line.find("finished enumerating registry") != std::string::npos) {
            break;
        }
    }
    return pass;
}

bool IsPlaceholder(const std::string& line)
{
    return line.starts_with('<') && line.ends_with('>');
}

/// @return the first planned line that the run does not have where it should be; empty when all are there and no
/// others.
std::string FirstDifference(const std::vector<std::string>& planned, const std::vector<std::string>& run)
{
    std::size_t next = 0;
    bool mayBeOthers = false;
    for (const std::string& line : planned) {
        if (IsPlaceholder(line)) {
            mayBeOthers = true;
            continue;
        }
        while (mayBeOthers && next < run.size() && run[next] != line) {
            ++next;
        }
        mayBeOthers = false;
        if (next == run.size() || run[next] != line) {
            return line + " instead of " + (next == run.size() ? "the end" : run[next]);
        }
        ++next;
    }
    return next == run.size() || mayBeOthers ? "" : "nothing instead of " + run[next];
}

/// What the plan of the sample kit traces on a Windows 7 x64 with these cards.
std::string TraceWithSampleKit(const std::vector<std::string>& cards)
{
    KitFolder kit({.folder = std::string(MORVIX_SOURCE_FOLDER) + "/kit", .setupDir = kSetupDir, .maps = {}},
                  ProfileDialect::Wine);
    Machine machine = MachineWithCards(cards);
    machine.system.version.value = VersionNumbers{6, 1, 7601};
    std::string trace;
    const MachinePlan plan = Planner(kit, {}).Plan(machine, &trace);
    EXPECT_EQ("Win732E", plan.system.section);
    return trace;
}
} // namespace

TEST(PlanTrace, OfTheSampleKitIsTheKeptTraceOfARealRun)
{
    const std::vector<std::string> run = KeptDevicePass("silent-two-adapters.txt");
    ASSERT_GT(run.size(), 100U);
    EXPECT_EQ("", FirstDifference(LinesIn(TraceWithSampleKit({kCard, kOtherCard})), run));
}

TEST(PlanTrace, OfAMachineWithoutAdapterIsTheKeptTraceOfARealRun)
{
    EXPECT_EQ("", FirstDifference(LinesIn(TraceWithSampleKit({})), KeptDevicePass("silent-no-adapter.txt")));
}

TEST(PlanTrace, WhatOnlyTheMachineCanAnswerIsOneLineEach)
{
    std::string all;
    for (const std::string& line : LinesIn(TraceWithSampleKit({kCard}))) {
        all += IsPlaceholder(line) ? line + "\n" : "";
    }
    EXPECT_EQ(
        "<what the driver store answers>\n<what the driver store answers>\n<what the installation answers>\n"
        "<what the driver directory holds>\n<what the adapter says about storage boot>\n",
        all);
}

TEST(PlanTrace, ARunThatEndsWithAFaultHasNoLastLine)
{
    const std::vector<std::string> lines = LinesIn(TraceWithSampleKit({"VEN_5D1A&DEV_FFFF&SUBSYS_00015D1A"}));
    EXPECT_EQ("Morvix: done processing infs in this directory", lines.back());
}
