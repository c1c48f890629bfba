#include "RecordFields.h"

#include <algorithm>
#include <cstring>

FieldText ReadField(const void* record, RecordField field) noexcept
{
    FieldText text{};
    const char* start = static_cast<const char*>(record) + field.offset;
    const char* end = start + std::min(field.bytes, text.size() - 1);
    std::copy(start, std::find(start, end, '\0'), text.begin());
    return text;
}

void WriteField(void* record, RecordField field, std::string_view text) noexcept
{
    char* start = static_cast<char*>(record) + field.offset;
    std::memset(start, 0, field.bytes);
    std::copy_n(text.data(), std::min(text.size(), field.bytes - 1), start);
}
