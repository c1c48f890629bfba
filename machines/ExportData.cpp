#include "ExportData.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {
constexpr std::size_t kMostBytes = std::size_t{1} << 20;

bool IsBlank(char16_t unit)
{
    return unit == u' ' || unit == u'\t';
}

constexpr std::optional<uint8_t> DigitOf(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9') {
        return static_cast<uint8_t>(unit - u'0');
    }
    const char16_t lower = unit | 0x20;
    return lower >= u'a' && lower <= u'f' ? std::optional(static_cast<uint8_t>(lower - u'a' + 10)) : std::nullopt;
}

constexpr uint8_t kNoDigit = 0xFF;
constexpr std::array<uint8_t, 256> MakeDigits()
{
    std::array<uint8_t, 256> digits{};
    for (std::size_t unit = 0; unit < digits.size(); ++unit) {
        digits[unit] = DigitOf(static_cast<char16_t>(unit)).value_or(kNoDigit);
    }
    return digits;
}
constexpr std::array kDigits = MakeDigits();

/// @return the number of 1 to 8 hexadecimal digits; no value for anything else.
std::optional<uint32_t> NumberOf(std::u16string_view digits)
{
    if (digits.empty() || digits.size() > 8) {
        return std::nullopt;
    }
    uint32_t number = 0;
    for (const char16_t unit : digits) {
        const std::optional<uint8_t> digit = DigitOf(unit);
        if (!digit) {
            return std::nullopt;
        }
        number = number << 4 | *digit;
    }
    return number;
}

bool TakePrefix(std::u16string_view& text, std::u16string_view lowerCase)
{
    const auto same = [](char16_t unit, char16_t wanted) {
        return (unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit | 0x20) : unit) == wanted;
    };
    if (text.size() < lowerCase.size() || !std::ranges::equal(text.substr(0, lowerCase.size()), lowerCase, same)) {
        return false;
    }
    text.remove_prefix(lowerCase.size());
    return true;
}

/// Reads text with escapes up to the closing quotation mark, which is taken too.
/// @return true when there is one.
bool ReadQuoted(std::u16string_view& text, std::u16string& out)
{
    while (!text.empty()) {
        const auto* const special =
            std::ranges::find_if(text, [](char16_t unit) { return unit == u'"' || unit == u'\\'; });
        const auto plain = static_cast<std::size_t>(special - text.begin());
        out.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) {
            return false;
        }
        const char16_t unit = text.front();
        text.remove_prefix(1);
        if (unit == u'"') {
            return true;
        }
        if (text.empty()) {
            out.push_back(unit);
            return false;
        }
        const char16_t escaped = text.front();
        text.remove_prefix(1);
        // Some writers escape the ends of lines too; before any other character the backslash counts for itself.
        if (escaped == u'n') {
            out.push_back(u'\n');
        } else if (escaped == u'r') {
            out.push_back(u'\r');
        } else if (escaped == u'\\' || escaped == u'"') {
            out.push_back(escaped);
        } else {
            out.push_back(unit);
            out.push_back(escaped);
        }
    }
    return false;
}

/// Takes bytes from the front that are written as reg.exe writes them: two digits and a comma each. That is how nearly
/// all of them are written, and most of an export is bytes.
/// @param most  So many bytes are taken at most.
void TakePlainBytes(std::u16string_view& text, std::size_t most, std::string& bytes)
{
    constexpr std::size_t kWritten = 3;
    const std::size_t before = bytes.size();
    const std::size_t count = std::min(text.size() / kWritten, most);
    bytes.resize(before + count);
    std::size_t taken = 0;
    for (; taken < count; ++taken) {
        const std::u16string_view written = text.substr(kWritten * taken, kWritten);
        const unsigned high = kDigits[written[0] & 0xFFU];
        const unsigned low = kDigits[written[1] & 0xFFU];
        if (written[2] != u',' || (high | low) > 0xF || (written[0] | written[1]) > 0xFF) {
            break;
        }
        bytes[before + taken] = static_cast<char>(high << 4 | low);
    }
    bytes.resize(before + taken);
    text.remove_prefix(kWritten * taken);
}

/// @return true for a list of texts with its end: an empty text.
bool IsWholeList(const StoredValue& value)
{
    const std::size_t width = value.wide ? 2 : 1;
    return value.type == kRegistryTextList && value.bytes.size() % width == 0 &&
           value.bytes.ends_with(std::string_view("\0\0\0\0", 4).substr(0, 2 * width));
}

/// @return true when nothing but blanks or a comment follows.
bool EndsHere(std::u16string_view rest)
{
    rest = WithoutBlanks(rest);
    return rest.empty() || rest.front() == u';';
}
} // namespace

std::u16string_view WithoutBlanks(std::u16string_view text)
{
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool TakeName(std::u16string_view& line, std::u16string& name)
{
    if (line.starts_with(u'@')) {
        line.remove_prefix(1);
        return true;
    }
    if (!line.starts_with(u'"')) {
        return false;
    }
    line.remove_prefix(1);
    return ReadQuoted(line, name);
}

ExportData::State ExportData::Begin(std::u16string_view data, ExportText text, bool wideHex)
{
    m_value = {.type = kRegistryText, .bytes = {}, .wide = text != ExportText::EightBit};
    m_text.clear();
    m_isSurelyWhole = false;
    data = WithoutBlanks(data);
    if (data.starts_with(u'"')) {
        data.remove_prefix(1);
        return m_state = ReadText(data);
    }
    if (data.starts_with(u'-')) {
        m_isSurelyWhole = EndsHere(data.substr(1));
        return m_state = m_isSurelyWhole ? State::Deletes : State::Bad;
    }
    if (TakePrefix(data, u"dword:")) {
        return m_state = BeginNumber(data);
    }
    return m_state = TakePrefix(data, u"hex") ? BeginBytes(data, wideHex) : State::Bad;
}

ExportData::State ExportData::Continue(std::u16string_view line)
{
    if (m_state == State::OpenText) {
        m_text += u"\r\n";
        return m_state = ReadText(line);
    }
    return m_state = m_state == State::OpenBytes ? ReadBytes(line) : State::Bad;
}

StoredValue ExportData::Take()
{
    m_state = State::Bad;
    return std::exchange(m_value, {});
}

ExportData::State ExportData::BeginNumber(std::u16string_view digits)
{
    digits = WithoutBlanks(digits.substr(0, digits.find(u';')));
    const std::optional<uint32_t> number = NumberOf(digits);
    if (!number) {
        return State::Bad;
    }
    m_value.type = kRegistryNumber;
    m_isSurelyWhole = digits.size() == 8;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        m_value.bytes.push_back(static_cast<char>(*number >> shift & 0xFF));
    }
    return State::Complete;
}

ExportData::State ExportData::BeginBytes(std::u16string_view data, bool wideHex)
{
    m_value.type = kRegistryBinary;
    m_value.wide = wideHex;
    if (data.starts_with(u'(')) {
        const std::size_t end = data.find(u')');
        const std::optional<uint32_t> type =
            end == std::u16string_view::npos ? std::nullopt : NumberOf(data.substr(1, end - 1));
        if (!type) {
            return State::Bad;
        }
        m_value.type = *type;
        data.remove_prefix(end + 1);
    }
    if (!data.starts_with(u':')) {
        return State::Bad;
    }
    return ReadBytes(data.substr(1));
}

ExportData::State ExportData::ReadText(std::u16string_view text)
{
    const bool isClosed = ReadQuoted(text, m_text);
    if (m_text.size() > kMostBytes || (isClosed && !EndsHere(text))) {
        return State::Bad;
    }
    if (!isClosed) {
        return State::OpenText;
    }
    m_isSurelyWhole = true;
    m_text.push_back(u'\0');
    if (m_value.wide) {
        m_value.bytes = BytesOf(m_text);
    } else {
        m_value.bytes.resize(m_text.size());
        std::ranges::transform(m_text, m_value.bytes.begin(), [](char16_t unit) { return static_cast<char>(unit); });
    }
    return State::Complete;
}

/// Reads pairs of digits with commas between them, up to the line's end or a backslash there.
ExportData::State ExportData::ReadBytes(std::u16string_view bytes)
{
    bytes = WithoutBlanks(bytes.substr(0, bytes.find(u';')));
    const bool goesOn = bytes.ends_with(u'\\');
    if (goesOn) {
        bytes.remove_suffix(1);
    }
    TakePlainBytes(bytes, kMostBytes - m_value.bytes.size(), m_value.bytes);
    // One or two digits, then a comma or the end; blanks between them do not count.
    uint32_t byte = 0;
    unsigned digits = 0;
    bool endsWithPair = true;
    for (std::size_t at = 0; at <= bytes.size(); ++at) {
        const char16_t unit = at < bytes.size() ? bytes[at] : u',';
        if (IsBlank(unit)) {
            continue;
        }
        if (const std::optional<uint8_t> digit = DigitOf(unit); digit && digits < 2) {
            byte = byte << 4 | *digit;
            ++digits;
            continue;
        }
        // Only the last byte of a line may be missing after its comma.
        const bool isEnd = at == bytes.size();
        if (unit != u',' || (digits == 0 && !isEnd) || m_value.bytes.size() == kMostBytes) {
            return State::Bad;
        }
        if (digits != 0) {
            m_value.bytes.push_back(static_cast<char>(byte));
            endsWithPair = digits == 2;
        }
        byte = 0;
        digits = 0;
    }
    m_isSurelyWhole = !goesOn && endsWithPair && IsWholeList(m_value);
    return goesOn ? State::OpenBytes : State::Complete;
}
