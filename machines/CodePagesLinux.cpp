#include "CodePages.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstddef>

#include "StoredText.h"

namespace {
constexpr uint32_t kUtf8 = 65001;

/// Owns a conversion.
class Conversion
{
public:
    explicit Conversion(uint32_t codePage)
        : m_conversion(iconv_open(("CP" + std::to_string(codePage)).c_str(), "UTF-16LE"))
    {
    }
    ~Conversion()
    {
        if (IsOpen()) {
            iconv_close(m_conversion);
        }
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_conversion != reinterpret_cast<iconv_t>(-1); }

    /// Converts what it can from the front of `bytes` and removes it there.
    /// @return true when nothing is left.
    bool Convert(std::string& bytes, std::string& out)
    {
        std::array<char, 256> buffer{};
        char* from = bytes.data();
        std::size_t left = bytes.size();
        std::size_t result = 0;
        do {
            char* to = buffer.data();
            std::size_t room = buffer.size();
            result = iconv(m_conversion, &from, &left, &to, &room);
            out.append(buffer.data(), buffer.size() - room);
        } while (result == static_cast<std::size_t>(-1) && errno == E2BIG);
        bytes.erase(0, bytes.size() - left);
        return left == 0;
    }

private:
    iconv_t m_conversion;
};

std::size_t BytesOfFirst(const std::string& bytes)
{
    const std::u16string units = UnitsOf(bytes.substr(0, 4));
    const bool isPair =
        units.size() == 2 && units[0] >= 0xD800 && units[0] <= 0xDBFF && units[1] >= 0xDC00 && units[1] <= 0xDFFF;
    return isPair ? 4 : 2;
}
} // namespace

std::string InCodePage(std::u16string_view text, uint32_t codePage)
{
    if (codePage == kUtf8) {
        return ToUtf8(text);
    }
    std::string out;
    std::string bytes = BytesOf(text);
    Conversion conversion(codePage);
    while (!bytes.empty() && !(conversion.IsOpen() && conversion.Convert(bytes, out))) {
        const std::size_t first = BytesOfFirst(bytes);
        const char16_t unit = UnitsOf(bytes.substr(0, 2)).front();
        // In a code page that is not known here only ASCII is certain.
        out.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
        bytes.erase(0, first);
    }
    return out;
}
