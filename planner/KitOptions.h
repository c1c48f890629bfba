#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Dialect.h"
#include "KitFolder.h"

/// Where a kit is, as the user says it.
struct KitOptions
{
    std::string folder;
    std::string setupDir;          ///< on the machine; empty: one is assumed
    std::vector<std::string> maps; ///< "D:\=DIR" each
    ProfileDialect reader = ProfileDialect::Windows;
};

/// @param problem  Receives in one line why the kit cannot be used.
/// @return null when there is no such kit.
[[nodiscard]] std::unique_ptr<KitFolder> OpenKit(const KitOptions& options, std::string& problem);
