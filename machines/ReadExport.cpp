#include "ReadExport.h"

#include <cerrno>
#include <memory>
#include <system_error>

#include "ExportReader.h"

Diagnostic FileRemark(const std::string& source, int error)
{
    return {.severity = Severity::Error,
            .source = source,
            .line = 0,
            .what = "cannot be read: " + std::generic_category().message(error),
            .cure = {}};
}

Machine ReadExport(std::FILE* file, std::string_view begin, const MachineOrigin& origin)
{
    // Small enough that the memory of the last one is used again instead of asking the system for new pages.
    constexpr std::size_t kBlockBytes = std::size_t{64} << 10;
    // Not cleared: every byte that is looked at was read before.
    const std::unique_ptr<char[]> block(new char[kBlockBytes]);
    ExportReader reader(origin.source);
    reader.Feed(begin);
    std::size_t bytes = 0;
    while (!reader.IsRefused() && (bytes = std::fread(block.get(), 1, kBlockBytes, file)) != 0) {
        reader.Feed({block.get(), bytes});
    }
    if (std::ferror(file) != 0) {
        return RefusedMachine(origin, {FileRemark(origin.source, errno)});
    }
    reader.Finish();
    return reader.IsRefused() ? RefusedMachine(origin, reader.Diagnostics())
                              : DescribeMachine(reader.Tree(), origin, reader.Diagnostics());
}
