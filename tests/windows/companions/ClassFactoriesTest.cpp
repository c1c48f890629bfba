#include <gtest/gtest.h>
#include <windows.h>

#include "CompanionFiles.h"
#include "NetInstClient.h"

namespace {
constexpr auto kPointerError = static_cast<int32_t>(0x80004003);
constexpr auto kUnknownClass = static_cast<int32_t>(0x80040111);

/// @return the number of allocated blocks of all heaps of this process.
std::size_t AllocatedBlocks()
{
    std::array<HANDLE, 64> heaps{};
    const DWORD heapCount = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    std::size_t blocks = 0;
    for (DWORD i = 0; i < heapCount; ++i) {
        HeapLock(heaps[i]);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry)) {
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
        }
        HeapUnlock(heaps[i]);
    }
    return blocks;
}
} // namespace

TEST(ClassFactories, BothNamesReturnAFactory)
{
    const NetInstLibrary library;
    const auto [proberStatus, prober] = library.AskForFactory("ISysProberInterfaceFactory");
    EXPECT_EQ(proberStatus, 0);
    ASSERT_NE(prober, nullptr);
    EXPECT_EQ(static_cast<ISysProberInterfaceFactory*>(prober)->Release(), 0);
    const auto [installStatus, install] = library.AskForFactory("IDriverInstallInterfaceFactory");
    EXPECT_EQ(installStatus, 0);
    ASSERT_NE(install, nullptr);
    EXPECT_EQ(static_cast<IDriverInstallInterfaceFactory*>(install)->Release(), 0);
}

TEST(ClassFactories, UnknownNamesFailWithoutAFactory)
{
    const NetInstLibrary library;
    for (const char* name :
         {"", "ISysProberInterface", "isysproberinterfacefactory", "IDriverInstallInterfaceFactory2"}) {
        SCOPED_TRACE(name);
        const auto [status, factory] = library.AskForFactory(name);
        EXPECT_EQ(status, kUnknownClass);
        EXPECT_EQ(factory, nullptr);
    }
}

TEST(ClassFactories, NullArgumentsFail)
{
    const NetInstLibrary library;
    const auto [status, factory] = library.AskForFactory(nullptr);
    EXPECT_EQ(status, kPointerError);
    EXPECT_EQ(factory, nullptr);
    EXPECT_EQ(library.EntryPoint()(kSysProberFactoryName, nullptr), kPointerError);
    EXPECT_EQ(library.EntryPoint()(nullptr, nullptr), kPointerError);
}

TEST(ClassFactories, CreatingWithoutAnOutputPointerFails)
{
    const NetInstLibrary library;
    void* made = nullptr;
    ASSERT_EQ(library.EntryPoint()(kSysProberFactoryName, &made), 0);
    const Held<ISysProberInterfaceFactory> probers(static_cast<ISysProberInterfaceFactory*>(made));
    EXPECT_EQ(probers->CreateSysProber(nullptr), kPointerError);

    ASSERT_EQ(library.EntryPoint()(kDriverInstallFactoryName, &made), 0);
    const Held<IDriverInstallInterfaceFactory> installs(static_cast<IDriverInstallInterfaceFactory*>(made));
    RawRecord record;
    EXPECT_EQ(installs->CreateDriverInstall(nullptr, &record), kPointerError);
    int wild = 0;
    IDriverInstallInterface* installer = reinterpret_cast<IDriverInstallInterface*>(&wild);
    EXPECT_EQ(installs->CreateDriverInstall(&installer, nullptr), kPointerError);
    EXPECT_EQ(installer, nullptr);
}

TEST(ClassFactories, AnObjectOutlivesItsFactory)
{
    const NetInstLibrary library;
    RawRecord record;
    // The factory is released inside, before the object is used.
    const Held<ISysProberInterface> prober = library.MakeProber();
    ASSERT_NE(prober, nullptr);
    EXPECT_EQ(static_cast<int32_t>(prober->IdentifySystem(&record)), 0);
}

TEST(ClassFactories, ReferencesAreCountedUpAndDown)
{
    const NetInstLibrary library;
    RawRecord record;
    IDriverInstallInterface* installer = library.MakeInstaller(record).release();
    ASSERT_NE(installer, nullptr);
    EXPECT_EQ(installer->AddRef(), 2);
    EXPECT_EQ(installer->AddRef(), 3);
    EXPECT_EQ(installer->Release(), 2);
    EXPECT_EQ(installer->Release(), 1);
    EXPECT_EQ(installer->Release(), 0);
}

TEST(ClassFactories, TheLastReleaseFreesTheObject)
{
    const NetInstLibrary library;
    RawRecord record;
    constexpr std::size_t kRounds = 2000;
    const auto makeAndRelease = [&] {
        const Held<ISysProberInterface> prober = library.MakeProber();
        const Held<IDriverInstallInterface> installer = library.MakeInstaller(record);
        ASSERT_NE(prober, nullptr);
        ASSERT_NE(installer, nullptr);
    };
    makeAndRelease();
    const std::size_t before = AllocatedBlocks();
    for (std::size_t i = 0; i < kRounds; ++i) {
        makeAndRelease();
    }
    // Four objects a round: a leak of any of them would show as thousands of blocks.
    EXPECT_LT(AllocatedBlocks(), before + kRounds / 10);
}

TEST(NetInst, ExportsOnlyItsEntryPoint)
{
    const NetInstLibrary library;
    EXPECT_NE(GetProcAddress(library.Module(), "DllGetClassFactoryObject"), nullptr);
    const auto* base = reinterpret_cast<const unsigned char*>(library.Module());
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const auto& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + directory.VirtualAddress);
    EXPECT_EQ(exports->NumberOfFunctions, 1U);
    EXPECT_EQ(exports->NumberOfNames, 1U);
}
