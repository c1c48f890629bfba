#include <array>
#include <cerrno>
#include <string_view>

#include "CodePages.h"
#include "Hive.h"
#include "ReadExport.h"
#include "ReadHive.h"
#include "ReadMachine.h"

namespace {
Machine Refuse(const MachineOrigin& origin, std::string what, std::string cure)
{
    return RefusedMachine(origin, {{.severity = Severity::Error,
                                    .source = origin.source,
                                    .line = 0,
                                    .what = std::move(what),
                                    .cure = std::move(cure)}});
}
} // namespace

Machine ReadMachine(const MachineSource& source, const ReadingOptions& options)
{
    MachineOrigin origin{.source = source.path,
                         .kind = SourceKind::Export,
                         .codePage = options.codePage,
                         .convert = InCodePage,
                         .isComplete = false};
    if (source.place == MachineSource::Place::ThisMachine) {
        origin.kind = SourceKind::Live;
        return Refuse(origin, "this machine has no registry", "name an export or a hive");
    }
    const bool isInput = source.place == MachineSource::Place::StandardInput;
    const UniqueStream opened(isInput ? nullptr : std::fopen(source.path.c_str(), "rbe"));
    if (!isInput && !opened) {
        return RefusedMachine(origin, {FileRemark(source.path, errno)});
    }
    std::FILE* const file = isInput ? stdin : opened.get();
    // The blocks of the reader are large enough.
    static_cast<void>(std::setvbuf(file, nullptr, _IONBF, 0));
    std::array<char, kHiveMagic.size()> begin{};
    const std::string_view magic(begin.data(), std::fread(begin.data(), 1, begin.size(), file));
    if (magic != kHiveMagic) {
        return ReadExport(file, magic, origin);
    }
    origin.kind = SourceKind::Hive;
    if (isInput) {
        return Refuse(origin, "a hive cannot be read from standard input", "name its file");
    }
    return ReadHive(source.path, origin);
}
