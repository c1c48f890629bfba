// Offline hives, whole and damaged. The library that follows their insides is not built for the fuzzer: what is checked
// is that nothing in a hive brings it down.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "CodePages.h"
#include "Hive.h"
#include "Promise.h"
#include "ReadHive.h"

namespace {
constexpr std::size_t kHeaderFields = 64;

/// Makes a hive of the beginning of its header and of its blocks without the zeros that fill them up. The checksum is
/// right: most damage would only ever be seen there.
std::string HiveOf(std::string_view input)
{
    std::string hive(input.substr(0, kHeaderFields));
    hive.resize(kHiveHeaderBytes, '\0');
    uint32_t sum = 0;
    for (std::size_t at = 0; at < 508; ++at) {
        sum ^= static_cast<uint32_t>(static_cast<unsigned char>(hive[at])) << (8 * (at % 4));
    }
    sum = sum == 0 ? 1 : sum == 0xFFFFFFFF ? 0xFFFFFFFE : sum;
    for (std::size_t byte = 0; byte < 4; ++byte) {
        hive[508 + byte] = static_cast<char>(sum >> (8 * byte) & 0xFF);
    }
    hive += input.substr(std::min(kHeaderFields, input.size()));
    hive.resize((hive.size() + kHiveHeaderBytes - 1) / kHiveHeaderBytes * kHiveHeaderBytes, '\0');
    return hive;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string hive = HiveOf({reinterpret_cast<const char*>(data), size});
    const int file = memfd_create("hive", 0);
    Promise(file >= 0 && write(file, hive.data(), hive.size()) == static_cast<ssize_t>(hive.size()), "a file");
    const MachineOrigin origin{
        .source = "SYSTEM", .kind = SourceKind::Hive, .codePage = {}, .convert = InCodePage, .isComplete = false};
    const Machine machine = ReadHive("/proc/self/fd/" + std::to_string(file), origin);
    close(file);
    Promise(
        std::ranges::any_of(machine.diagnostics,
                            [](const Diagnostic& each) { return each.severity == Severity::Error; }) == machine.refused,
        "a refused machine says why, another one has no error");
    return 0;
}
