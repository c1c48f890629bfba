#pragma once

#include "KitSource.h"

/// The kit as the platform reads it: its private-profile functions, its files and its directory search.
class PlatformKit final : public KitSource
{
public:
    uint32_t ReadText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                      const std::string& file) override;
    uint32_t ReadSection(const char* section, std::span<char> buffer, const std::string& file) override;
    [[nodiscard]] FileMark MarkOf(const std::string& file) override;
    [[nodiscard]] std::optional<FileStamp> StampOf(const std::string& file) override;
    /// The search's handle stays open for the rest of the run.
    [[nodiscard]] std::unique_ptr<InfListing> List(const std::string& directoryPath) override;
};
