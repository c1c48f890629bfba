#pragma once

#include <string>
#include <vector>

/// The companions as they were built. Their folders lie beside the test program's own in the build tree.

/// @return the full path of `relative`, which is relative to the top of the build tree.
[[nodiscard]] std::string BuiltFile(const std::string& relative);

[[nodiscard]] inline std::string NetInstPath()
{
    return BuiltFile("netinst\\NetInst.dll");
}
[[nodiscard]] inline std::string MorvixResPath()
{
    return BuiltFile("resources\\MorvixRes.dll");
}
/// @return the full path of `relative` in the sample kit.
[[nodiscard]] inline std::string KitFile(const std::string& relative)
{
    return BuiltFile("kit\\" + relative);
}

/// @return the names of the files of `directory` that match `pattern`, in the order of their names.
[[nodiscard]] std::vector<std::string> FilesIn(const std::string& directory, const std::string& pattern);

/// The kit's directories, one for each generation of x64 systems.
struct KitDirectory
{
    const char* name;
    const char* generation; ///< the number in the names of its drivers
};
inline constexpr KitDirectory kKitDirectories[] = {
    {"WinXPx64", "51"}, {"WinVistax64", "60"}, {"Win7x64", "62"}, {"Win8x64", "63"}};
