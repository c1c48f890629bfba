// The contract of platform/NetInst.h, checked with the shipped library and with one that was written from the interface
// alone.

#include <gtest/gtest.h>
#include <objbase.h>
#include <windows.h>

#include <algorithm>
#include <ostream>
#include <string>

#include "CompanionFiles.h"
#include "NetInstClient.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "SimulatedAdapter.h"
#include "TestThread.h"

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_0C0F5D1A&REV_07";

struct LibraryCase
{
    const char* name;
    const char* file; ///< relative to the top of the build tree
};

void PrintTo(const LibraryCase& library, std::ostream* out)
{
    *out << library.name;
}

class NetInstContract : public testing::TestWithParam<LibraryCase>
{
protected:
    static std::string Inf() { return KitFile("Drv\\Win7x64\\ngea62x64.inf"); }

    const ScratchRegistryKey m_record{kNetInstKey};
    const NetInstLibrary m_library{BuiltFile(GetParam().file)};
};

TEST_P(NetInstContract, OnlyTheTwoNamesReturnAFactory)
{
    for (const char* name : {kSysProberFactoryName, kDriverInstallFactoryName}) {
        const auto [status, factory] = m_library.AskForFactory(name);
        EXPECT_EQ(status, 0) << name;
        ASSERT_NE(factory, nullptr) << name;
        // Both factories have their Release in the same slot.
        static_cast<ISysProberInterfaceFactory*>(factory)->Release();
    }
    const auto [status, factory] = m_library.AskForFactory("ISysProberInterface");
    EXPECT_NE(status, 0);
    EXPECT_EQ(factory, nullptr);
}

TEST_P(NetInstContract, TheProberNamesAFamilyAndLeavesTheRestOfTheRecordAlone)
{
    RawRecord record;
    std::fill(record.bytes.begin() + 204, record.bytes.end(), 'x');
    // The factory is released inside, before the prober is used.
    const Held<ISysProberInterface> prober = m_library.MakeProber();
    ASSERT_NE(prober, nullptr);
    EXPECT_EQ(static_cast<uint32_t>(prober->IdentifySystem(&record)), 0U);
    EXPECT_EQ(record.Family(), "Windows Vista");
    EXPECT_TRUE(std::all_of(record.bytes.begin() + 204, record.bytes.end(), [](char c) { return c == 'x'; }));
}

TEST_P(NetInstContract, AnIdentificationForgetsTheRestartOfAnEarlierRun)
{
    SetRegistryNumber(m_record.Path(), kNetInstRestartValue, 1);
    RawRecord record;
    const Held<ISysProberInterface> prober = m_library.MakeProber();
    ASSERT_NE(prober, nullptr);
    static_cast<void>(prober->IdentifySystem(&record));
    EXPECT_FALSE(ReadRegistryValue(m_record.Path(), kNetInstRestartValue));
}

TEST_P(NetInstContract, ABindingReturnsZeroAndLeavesNoLastError)
{
    const SimulatedAdapter adapter(kDevice);
    const InstallAnswer answer = m_library.Install(Inf(), adapter.HardwareId(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.lastError, 0U);
    EXPECT_EQ(adapter.Value("Service"), "NGEA");
}

TEST_P(NetInstContract, ADriverThatIsNotAcceptedIsRefusedWithTheReason)
{
    const SimulatedAdapter adapter(kDevice);
    const ScratchDirectory kit;
    CopyFileTo(Inf(), kit.At("ngea62x64.inf"));
    for (const std::string& inf : {kit.At("none.inf"), kit.At("ngea62x64.inf")}) {
        SCOPED_TRACE(inf);
        const InstallAnswer answer = m_library.Install(inf, adapter.HardwareId());
        EXPECT_EQ(answer.status, static_cast<int32_t>(kNetInstRefused));
        EXPECT_EQ(answer.lastError, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    }
    EXPECT_EQ(adapter.ClassKey(), "");
}

TEST_P(NetInstContract, ADeviceThatIsNotPresentIsNotARefusal)
{
    const InstallAnswer answer = m_library.Install(Inf(), "PCI\\VEN_5D1A&DEV_FFFF&SUBSYS_00015D1A&REV_01");
    EXPECT_EQ(answer.status, static_cast<int32_t>(kNetInstNotThere));
    EXPECT_NE(answer.lastError, 0U);
}

TEST_P(NetInstContract, OneObjectInstallsEveryDeviceOfARun)
{
    const SimulatedAdapter adapter(kDevice);
    RawRecord record;
    record.SetFamily("Windows Vista");
    const Held<IDriverInstallInterface> installer = m_library.MakeInstaller(record);
    ASSERT_NE(installer, nullptr);
    record.SetInfPath(Inf());
    record.SetHardwareId("PCI\\VEN_5D1A&DEV_FFFF&SUBSYS_00015D1A&REV_01");
    EXPECT_LT(installer->InstallForRecord(&record, 0), 0);
    record.SetHardwareId(adapter.HardwareId());
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(installer->InstallForRecord(&record, 0), 0);
    EXPECT_EQ(GetLastError(), 0U);
}

TEST_P(NetInstContract, AnObjectLivesUntilItsLastReferenceIsReleased)
{
    RawRecord record;
    record.SetFamily("Windows Vista");
    record.SetInfPath(Inf());
    record.SetHardwareId("PCI\\VEN_5D1A&DEV_FFFF&SUBSYS_00015D1A&REV_01");
    const Held<IDriverInstallInterface> installer = m_library.MakeInstaller(record);
    ASSERT_NE(installer, nullptr);
    installer->AddRef();
    installer->Release();
    EXPECT_EQ(installer->InstallForRecord(&record, 0), static_cast<int32_t>(kNetInstNotThere));
}

TEST_P(NetInstContract, AThreadOfTheMultithreadedApartmentInstallsWhileTheMainThreadWaits)
{
    const SimulatedAdapter adapter(kDevice);
    InstallAnswer answer{.status = -1, .lastError = 0};
    TestThread thread([&] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        answer = m_library.Install(Inf(), adapter.HardwareId());
        CoUninitialize();
    });
    thread.join();
    EXPECT_EQ(answer.status, 0);
}

INSTANTIATE_TEST_SUITE_P(EveryLibrary, NetInstContract,
                         testing::Values(LibraryCase{"NetInst", "netinst\\NetInst.dll"},
                                         LibraryCase{"PlainNetInst", "tests\\doubles\\PlainNetInst.dll"}),
                         [](const testing::TestParamInfo<LibraryCase>& tested) { return tested.param.name; });
} // namespace
