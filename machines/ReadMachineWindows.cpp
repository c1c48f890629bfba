#include <fcntl.h>
#include <io.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "CodePages.h"
#include "Hive.h"
#include "ReadExport.h"
#include "ReadLive.h"
#include "ReadMachine.h"

Machine ReadMachine(const MachineSource& source, const ReadingOptions& options)
{
    MachineOrigin origin{.source = source.path,
                         .kind = SourceKind::Export,
                         .codePage = options.codePage,
                         .convert = InCodePage,
                         .isComplete = false};
    if (source.place == MachineSource::Place::ThisMachine) {
        origin.kind = SourceKind::Live;
        origin.isComplete = true;
        return ReadLive(origin);
    }
    const bool isInput = source.place == MachineSource::Place::StandardInput;
    const UniqueStream opened(isInput ? nullptr : std::fopen(source.path.c_str(), "rb"));
    if (!isInput && !opened) {
        return RefusedMachine(origin, {FileRemark(source.path, errno)});
    }
    std::FILE* const file = isInput ? stdin : opened.get();
    if (isInput) {
        _setmode(_fileno(stdin), _O_BINARY);
    }
    std::array<char, kHiveMagic.size()> begin{};
    const std::string_view magic(begin.data(), std::fread(begin.data(), 1, begin.size(), file));
    if (magic != kHiveMagic) {
        return ReadExport(file, magic, origin);
    }
    origin.kind = SourceKind::Hive;
    return RefusedMachine(origin, {{.severity = Severity::Error,
                                    .source = source.path,
                                    .line = 0,
                                    .what = "a hive can only be read on Linux",
                                    .cure = "read it there, or name an export"}});
}
