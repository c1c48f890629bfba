#pragma once

#include <cstdio>
#include <memory>
#include <string_view>

#include "DescribeMachine.h"

struct FileCloser
{
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using UniqueStream = std::unique_ptr<std::FILE, FileCloser>;

/// Reads an export to its end. An error of the file itself refuses the machine.
/// @param file   Open for reading bytes; it stays open.
/// @param begin  What was read of it before.
[[nodiscard]] Machine ReadExport(std::FILE* file, std::string_view begin, const MachineOrigin& origin);

/// @return the remark that a file cannot be opened or read.
[[nodiscard]] Diagnostic FileRemark(const std::string& source, int error);
