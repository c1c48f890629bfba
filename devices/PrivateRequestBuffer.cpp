#include "PrivateRequestBuffer.h"

#include <algorithm>
#include <limits>
#include <new>

namespace {
constexpr std::size_t kStatusOffset = 4;
constexpr std::size_t kLengthOffset = 8;
constexpr uint32_t kErrorGenFailure = 31;
constexpr uint32_t kErrorNotSupported = 50;

void PutNumber(std::span<std::byte> field, uint32_t number)
{
    for (std::size_t index = 0; index < sizeof(number); ++index) {
        field[index] = static_cast<std::byte>(number >> (8 * index));
    }
}

uint32_t GetNumber(std::span<const std::byte> field)
{
    uint32_t number = 0;
    for (std::size_t index = 0; index < sizeof(number); ++index) {
        number |= std::to_integer<uint32_t>(field[index]) << (8 * index);
    }
    return number;
}

uint32_t ErrorOfStatus(uint32_t status)
{
    if (status == 0) {
        return 0;
    }
    return status == kStatusNotSupported ? kErrorNotSupported : kErrorGenFailure;
}
} // namespace

PrivateRequestBuffer MakePrivateRequest(uint32_t oid, std::span<const std::byte> data)
{
    if (data.size() > std::numeric_limits<uint32_t>::max() - kPrivateHeaderBytes) {
        return {};
    }
    const auto size = static_cast<uint32_t>(data.size() + kPrivateHeaderBytes);
    PrivateRequestBuffer buffer{.bytes = std::unique_ptr<std::byte[]>(new (std::nothrow) std::byte[size]()),
                                .size = size};
    if (!buffer.bytes) {
        return {};
    }
    PutNumber(buffer.All(), oid);
    std::ranges::copy(data, buffer.All().subspan(kPrivateHeaderBytes).begin());
    return buffer;
}

PrivateAnswer ReadPrivateAnswer(const PrivateRequestBuffer& buffer, std::span<std::byte> data)
{
    const std::span<const std::byte> all = buffer.All();
    const uint32_t length = GetNumber(all.subspan(kLengthOffset));
    PrivateAnswer answer;
    answer.status = GetNumber(all.subspan(kStatusOffset));
    answer.bytesReturned = static_cast<uint32_t>(std::min<std::size_t>(length, data.size()));
    answer.bytesNeeded = answer.status == 0 ? 0 : length;
    answer.error = ErrorOfStatus(answer.status);
    std::ranges::copy(all.subspan(kPrivateHeaderBytes, answer.bytesReturned), data.begin());
    return answer;
}
