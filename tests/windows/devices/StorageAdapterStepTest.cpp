// The last step of an install by the driver-install interface: does the machine boot from the device just installed?
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "AdapterDevices.h"
#include "DeviceInstall.h"
#include "DevicePassState.h"
#include "ResultKeys.h"

using testing::Contains;
using testing::Not;

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kHardwareId[] = "PCI\\VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kAsked[] = "Enter -> GetNetCfgInstanceId()\n";
constexpr char kFound[] = "Found iSCSI adapter";

class StorageAdapterStep : public testing::Test
{
protected:
    StorageAdapterStep()
    {
        std::ranges::copy(std::string_view("C:\\KIT\\OTHER.INF"), m_record.infPath.begin());
        std::ranges::copy(std::string_view(kHardwareId), m_record.hardwareId.begin());
    }
    ~StorageAdapterStep() override { DevicePassState = {}; }

    std::vector<std::string> Install(const RecordingInstall::Answer& answer)
    {
        RecordingInstall install(answer);
        TraceCapture trace;
        InstallMatchedDevice(InstallRoute::DriverInterface, m_record, kDevice, &install, kNoProgress);
        return trace.Messages();
    }

    ScratchRegistryKey m_results{kBasedriversKey};
    InfKit m_kit;
    DriverInstallRecord m_record = RecordOf("Windows Vista");
    RegistryAdapter m_adapter{kDevice, "9001", kTestInstance};
    TestAdapterDriver m_driver{TestDriverFile(), {{kTestInstance, kTestPrivateName}}};
};
} // namespace

TEST_F(StorageAdapterStep, InstalledIScsiBootAdapterIsFoundAfterTheResultIsPosted)
{
    m_driver.AnswerBootMode(kTestInstance, 2);
    const std::vector<std::string> lines = Install({.status = 0, .lastError = 0});
    EXPECT_TRUE(DevicePassState.storageAdapterFound);
    const auto posted = std::ranges::find(lines, "Enter -> PostInstallRegResult\n");
    const auto found = std::ranges::find(lines, kFound);
    ASSERT_NE(found, lines.end());
    EXPECT_LT(posted, found);
    EXPECT_EQ(found + 1, lines.end());
}

TEST_F(StorageAdapterStep, FailedInstallWithoutALastErrorIsAskedToo)
{
    m_driver.AnswerBootMode(kTestInstance, 3);
    EXPECT_THAT(Install({.status = -1, .lastError = 0}), Contains(kFound));
}

TEST_F(StorageAdapterStep, InstallThatLeavesAnErrorIsNotAsked)
{
    m_driver.AnswerBootMode(kTestInstance, 2);
    EXPECT_THAT(Install({.status = 0, .lastError = 259}), Not(Contains(kAsked)));
    EXPECT_EQ(m_driver.WhatWasAsked(kTestInstance).opens, 0U);
    EXPECT_FALSE(DevicePassState.storageAdapterFound);
}

TEST_F(StorageAdapterStep, AfterOneThatBootsNoFurtherDeviceIsAsked)
{
    m_driver.AnswerBootMode(kTestInstance, 2);
    EXPECT_THAT(Install({.status = 0, .lastError = 0}), Contains(kAsked));
    const uint32_t opens = m_driver.WhatWasAsked(kTestInstance).opens;
    EXPECT_THAT(Install({.status = 0, .lastError = 0}), Not(Contains(kAsked)));
    EXPECT_EQ(m_driver.WhatWasAsked(kTestInstance).opens, opens);
}

TEST_F(StorageAdapterStep, AfterOneThatDoesNotBootTheNextDeviceIsAsked)
{
    EXPECT_THAT(Install({.status = 0, .lastError = 0}), Contains(kAsked));
    EXPECT_FALSE(DevicePassState.storageAdapterFound);
    m_driver.AnswerBootMode(kTestInstance, 3);
    EXPECT_THAT(Install({.status = 0, .lastError = 0}), Contains(kFound));
}

TEST_F(StorageAdapterStep, InterfaceThatRewritesTheRecordDoesNotChangeWhichDeviceIsAsked)
{
    m_driver.AnswerBootMode(kTestInstance, 2);
    RecordingInstall install;
    install.duringCall = [this] { m_record.hardwareId.fill('\0'); };
    TraceCapture trace;
    InstallMatchedDevice(InstallRoute::DriverInterface, m_record, kDevice, &install, kNoProgress);
    EXPECT_THAT(trace.Messages(), Contains(kDevice));
    EXPECT_TRUE(DevicePassState.storageAdapterFound);
}
