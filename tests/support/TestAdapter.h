#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The adapter driver's answer to the private request.
struct TestAdapterAnswer
{
    uint32_t status = 0;            ///< status field
    std::string data;               ///< bytes after the header
    std::optional<uint32_t> length; ///< length field; the data's own length when not given
};

/// The driver of simulated network adapters, a real kernel driver, running as a service for the life of the object. Its
/// devices answer requests as the test sets here, and it counts them. One at a time on a machine.
class TestAdapterDriver
{
public:
    /// One adapter and its private control device.
    struct Adapter
    {
        std::string instanceId;  ///< the adapter's device is \\.\<instanceId>
        std::string privateName; ///< its private control device is \\.\<privateName>; empty for none
    };

    /// Starts the driver. At first each adapter answers the device-name query with its private name and the private
    /// request with boot mode 0. Throws std::runtime_error when the driver cannot be started.
    /// @param driverFile   Full path of test_adapter.sys.
    /// @param adapters     Their devices exist as long as the driver runs.
    /// @param ndisVersion  With a value there is a network driver interface, \\.\NDIS, of that version.
    TestAdapterDriver(const std::string& driverFile, const std::vector<Adapter>& adapters,
                      std::optional<uint32_t> ndisVersion = std::nullopt);
    /// Stops the driver and removes it.
    ~TestAdapterDriver(); // NOLINT(bugprone-exception-escape)
    TestAdapterDriver(const TestAdapterDriver&) = delete;
    TestAdapterDriver& operator=(const TestAdapterDriver&) = delete;

    // A setting applies from the next request on. `ntStatus` 0 lets the request succeed again.

    void AnswerBootMode(const std::string& instanceId, uint32_t bootMode);
    void AnswerPrivateRequest(const std::string& instanceId, const TestAdapterAnswer& answer);
    void FailPrivateRequest(const std::string& instanceId, uint32_t ntStatus);
    /// @param bytes  As they are written to the asker's buffer, with or without a terminator.
    void AnswerDeviceName(const std::string& instanceId, const std::string& bytes);
    void FailDeviceName(const std::string& instanceId, uint32_t ntStatus);
    /// Lets every request to the adapter's devices be answered that much after the driver has taken it.
    void AnswerLate(const std::string& instanceId, uint32_t milliseconds);
    void SetNdisVersion(uint32_t version);
    void FailNdisVersion(uint32_t ntStatus);
    void AnswerNdisVersionLate(uint32_t milliseconds);

    /// What an adapter's devices have been asked, or the network driver interface for an empty instance ID.
    struct Asked
    {
        uint32_t opens = 0;
        uint32_t closes = 0;
        uint32_t nameQueries = 0;
        uint32_t privateRequests = 0;
        uint32_t versionQueries = 0;
        uint32_t lastOid = 0;
        std::string lastData; ///< the data that came with the last private request
    };
    [[nodiscard]] Asked WhatWasAsked(const std::string& instanceId = {}) const;

    /// A driver learns of a closed device some time after the program has closed it.
    /// @return false when not everything that was opened gets closed within 5 seconds.
    [[nodiscard]] bool WaitUntilAllIsClosed(const std::string& instanceId = {}) const;

private:
    void Start(const std::string& driverFile);
};
