// The support library: bounded copies, lists, texts, characters of one byte and of two, trace lines, library paths,
// waiting for a service.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "AgentLibraries.h"
#include "OrvBounded.h"
#include "OrvCharacters.h"
#include "OrvMultiString.h"
#include "OrvText.h"
#include "OrvTraceLine.h"
#include "OrvTraceRules.h"
#include "Promise.h"
#include "ServicePolling.h"
#include "TwoByteText.h"

namespace {
/// What a bounded copy or append must leave: result and buffer.
void CheckBounded(const std::string& start, const std::string& source, std::size_t size, bool append, bool withSource)
{
    const ExactBuffer buffer(size);
    start.copy(buffer.Data(), size);
    const std::string before(buffer.Text());
    const char* const text = withSource ? source.c_str() : nullptr;
    const int result = append ? OrvBoundedAppend(buffer.Data(), size, text) : OrvBoundedCopy(buffer.Data(), size, text);

    const std::size_t end = append ? before.find('\0') : 0;
    int expected = 0;
    if (size == 0 || !withSource || end == std::string::npos) {
        expected = kOrvInvalidArgument;
    } else if (end + std::strlen(source.c_str()) + 1 > size) {
        expected = kOrvTooSmall;
    }
    Promise(result == expected, "0, 22 for what cannot be, 34 for what does not fit");
    if (size == 0) {
        return;
    }
    std::string after = before;
    if (expected == 0) {
        after.replace(end, std::strlen(source.c_str()) + 1, source.c_str(), std::strlen(source.c_str()) + 1);
    } else {
        after[0] = '\0';
    }
    Promise(buffer.Text() == after, "the text with its terminator, or an empty text, and nothing else");
}

void CheckBoundedCopies(FuzzedDataProvider& input, const std::string& source)
{
    const auto size = input.ConsumeIntegralInRange<std::size_t>(0, 40);
    std::string start = input.ConsumeRandomLengthString(40);
    const bool withSource = input.ConsumeIntegralInRange(0, 15) != 0;
    for (const bool append : {false, true}) {
        CheckBounded(start, source, size, append, withSource);
        CheckBounded(start + '\0', source, start.size() + 1 + source.size(), append, withSource);
    }
    const ExactBuffer untouched(std::string_view("x"));
    Promise(OrvBoundedCopy(nullptr, size, source.c_str()) == kOrvInvalidArgument, "no destination");
    Promise(OrvBoundedAppend(nullptr, size, source.c_str()) == kOrvInvalidArgument, "no destination to append to");
}

struct Text
{
    std::string text;
    [[nodiscard]] std::size_t Length() const { return text.size(); }
};

void CheckMultiString(const std::string& data)
{
    const std::vector<std::string> texts = OrvReadMultiString(ExactBuffer(data).Text());
    std::vector<std::string> expected(1);
    for (const char c : data) {
        if (c == '\0') {
            expected.emplace_back();
        } else {
            expected.back() += c;
        }
    }
    std::erase(expected, std::string());
    Promise(texts == expected, "every text that is not empty");

    std::string stored;
    std::vector<Text> lengths;
    for (const std::string& text : texts) {
        stored += text + '\0';
        lengths.push_back({text});
    }
    stored += '\0';
    Promise(OrvMultiStringBytes(lengths) == stored.size(), "the bytes that the list takes");
    Promise(OrvReadMultiString(stored) == texts, "a stored list reads the same");
}

void CheckTexts(const std::string& text, char separator)
{
    std::vector<std::string> expected;
    std::string part;
    for (const char c : text) {
        if (c == separator) {
            expected.push_back(part);
            part.clear();
        } else {
            part += c;
        }
    }
    if (!expected.empty() && !part.empty()) {
        expected.push_back(part);
    }
    Promise(OrvSplitText(text, separator) == expected, "the parts between separators");

    const std::string_view left = OrvTrimLeft(text);
    const std::string_view right = OrvTrimRight(text);
    Promise(text.ends_with(left) && !left.starts_with(' ') && OrvTrimLeft(left) == left, "no space in front");
    Promise(text.starts_with(right) && !right.ends_with(' ') && OrvTrimRight(right) == right, "no space at the end");
    Promise(text.substr(0, text.size() - left.size()).find_first_not_of(' ') == std::string::npos, "only spaces go");
    Promise(text.find_first_not_of(' ', right.size()) == std::string::npos, "only spaces go at the end");
}

void CheckCharacters(const std::string& text, uint32_t allowed)
{
    bool ofType = true;
    bool hexadecimal = true;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool alphabetic = byte < 0x80 && std::isalpha(byte) != 0;
        const bool numeric = byte < 0x80 && std::isdigit(byte) != 0;
        const bool symbolic = byte < 0x80 && (std::ispunct(byte) != 0 || byte == ' ');
        Promise(OrvIsAlphabetic(c) == alphabetic && OrvIsNumeric(c) == numeric && OrvIsSymbolic(c) == symbolic,
                "each character has the class of ASCII");
        Promise(OrvIsHexadecimal(c) == (byte < 0x80 && std::isxdigit(byte) != 0), "hexadecimal digits");
        ofType = ofType && (!alphabetic || (allowed & 1) != 0) && (!numeric || (allowed & 2) != 0) &&
                 (!symbolic || (allowed & 4) != 0);
        hexadecimal = hexadecimal && OrvIsHexadecimal(c);
    }
    Promise(OrvIsTextOfType(text, allowed) == ofType, "no class that is not allowed");
    Promise(OrvIsTextHexadecimal(text) == hexadecimal, "a text of hexadecimal digits");
}

void CheckDecimal(int32_t value)
{
    const ExactBuffer buffer(kOrvDecimalBytes);
    const bool written = OrvDecimalText(value, buffer.All().first<kOrvDecimalBytes>());
    const std::string expected = std::to_string(value);
    Promise(written == (expected.size() < kOrvDecimalBytes), "ten characters or more are refused");
    Promise(UpToNul(buffer.Text()) == (written ? expected : ""), "the decimal text, or none");
    Promise(buffer.Text().find('\0') != std::string_view::npos, "with its terminator");
}

void CheckTraceLine(FuzzedDataProvider& input, const std::string& message)
{
    const std::string name = std::string(input.ConsumeIntegralInRange<std::size_t>(0, 1300), 'M');
    OrvTracePrefix prefix;
    prefix.moduleName = name.c_str();
    prefix.processId = input.ConsumeIntegral<uint32_t>();
    prefix.threadId = input.ConsumeIntegral<uint32_t>();
    prefix.hour = input.ConsumeIntegralInRange(0, 23);
    prefix.millisecond = input.ConsumeIntegralInRange(0, 999);
    prefix.counter = input.ConsumeIntegral<uint64_t>();
    const ExactBuffer buffer(kTraceLineBytes);
    const auto line = buffer.All().first<kTraceLineBytes>();
    const int chars = OrvComposeTracePrefix(line, prefix);
    std::array<char, 4096> whole{};
    const int wholeChars = std::snprintf(whole.data(), whole.size(), "%s\tPID:%x\tTID:%x\t%02d:00:00.%03d\t(%llX)\t",
                                         name.c_str(), prefix.processId, prefix.threadId, prefix.hour,
                                         prefix.millisecond, static_cast<unsigned long long>(prefix.counter));
    Promise(chars == (wholeChars <= 1151 ? wholeChars : -1), "the prefix, or none when it is overlong");
    if (chars < 0) {
        return;
    }
    const auto prefixChars = static_cast<std::size_t>(chars);
    const std::span<char> room = OrvTraceMessageRoom(line, prefixChars);
    Promise(room.size() <= kTraceMessageChars && LiesWithin({room.data(), room.size()}, buffer.Text().substr(0, 1150)),
            "the message has its place before the line's end");
    // As the runtime's bounded print does it: cut, without a terminator when it fills the room.
    const std::string shown = std::string(message.c_str()).substr(0, room.size());
    shown.copy(room.data(), room.size());
    if (shown.size() < room.size()) {
        room[shown.size()] = '\0';
    }
    const bool cut = shown.size() < std::strlen(message.c_str());
    OrvFinishTraceLine(line, prefixChars, room, cut ? -1 : static_cast<int>(shown.size()));
    const std::string expected = std::string(whole.data(), std::min<std::size_t>(prefixChars, 1150)) + shown + '\n';
    Promise(UpToNul(buffer.Text()) == expected, "prefix, message and line feed");
}

/// Arguments that a format takes, read with the runtime's own grammar; -1 for one that writes through an argument.
int ArgumentsOf(const std::string& format)
{
    int arguments = 0;
    for (std::size_t at = 0; at < format.size(); ++at) {
        if (format[at] != '%') {
            continue;
        }
        ++at;
        while (at < format.size() &&
               std::string_view("-+ #0123456789.*hlLwI").find(format[at]) != std::string_view::npos) {
            arguments += format[at] == '*' ? 1 : 0;
            ++at;
        }
        if (at < format.size() && format[at] == 'n') {
            return -1;
        }
        arguments += at < format.size() && format[at] != '%' ? 1 : 0;
    }
    return arguments;
}

void CheckFormat(const std::string& message, int argumentCount)
{
    const std::string format = OrvMessageAsFormat(message, argumentCount);
    const int arguments = ArgumentsOf(format);
    Promise(arguments >= 0, "nothing is written through an argument");
    Promise(arguments <= argumentCount, "no argument beyond the last is taken");
    Promise(OrvMessageAsFormat(format, argumentCount) == format, "a usable format stays as it is");
    if (message.find('%') == std::string::npos) {
        Promise(format == message, "a message without signs stays as it is");
    }
}

bool NoLeadByte(unsigned char)
{
    return false;
}

bool JapaneseLeadByte(unsigned char byte)
{
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

/// Against the list of the text's characters.
void CheckTwoByteText(const std::string& text, std::size_t maxBytes)
{
    std::vector<std::string> characters;
    for (const char c : text) {
        const bool isSecond = !characters.empty() && characters.back().size() == 1 &&
                              JapaneseLeadByte(static_cast<unsigned char>(characters.back()[0]));
        if (isSecond) {
            characters.back() += c;
        } else {
            characters.emplace_back(1, c);
        }
    }
    std::size_t last = std::string::npos;
    std::size_t at = 0;
    std::string cut;
    bool isCut = false;
    bool isDouble = false;
    const std::string* before = nullptr;
    for (const std::string& character : characters) {
        last = character == "\\" ? at : last;
        isDouble = isDouble || (before != nullptr && *before == "\\" && character == "\\");
        before = &character;
        at += character.size();
        isCut = isCut || at > maxBytes;
        cut += isCut ? "" : character;
    }
    Promise(LastBackslash(text, JapaneseLeadByte) == last, "the last character that is a backslash");
    Promise(EndsWithBackslash(text, JapaneseLeadByte) == (before != nullptr && *before == "\\"), "the text's end");
    Promise(HasDoubleBackslash(text, JapaneseLeadByte) == isDouble, "two characters that are backslashes");
    Promise(CutToBytes(text, maxBytes, JapaneseLeadByte) == cut, "whole characters only");
}

void CheckRules(FuzzedDataProvider& input, const std::string& text)
{
    const auto level = input.ConsumeIntegralInRange<uint32_t>(0, 6);
    Promise(OrvPrintWrites(level) == (level != 0 && level != 2), "what a line needs");
    Promise(OrvErrorWrites(level) == (level != 0), "what an error needs");
    Promise(OrvMirrorsToDebugger(level) == (level == 4), "what the debugger sees");
    Promise(OrvConsultsRegistry(level) == (level == 1 || level == 2), "what the registry may change");
    Promise(OrvErrorLineLevel(level) == (level == 4 ? 4U : 1U), "an error's own level");
    Promise(OrvPrintWrites(OrvErrorLineLevel(level)), "an error line is written");
    const std::size_t length = std::strlen(text.c_str());
    Promise(OrvIsLogFileName(text.c_str()) == (length >= 1 && length <= 245), "a name of 1 to 245 characters");
    const char* tail = OrvNameWithBackslash(text.c_str(), NoLeadByte);
    const std::size_t place = std::string(text.c_str()).find_last_of('\\');
    Promise(tail == (place == std::string::npos ? nullptr : text.c_str() + place), "from the last backslash on");
    const bool plain = input.ConsumeBool();
    const bool setUp = input.ConsumeBool();
    const bool opened = input.ConsumeBool();
    const OrvLogDirectory expected = plain              ? OrvLogDirectory::None
                                     : setUp || !opened ? OrvLogDirectory::Temp
                                                        : OrvLogDirectory::InstalledDir;
    Promise(OrvChooseLogDirectory(plain, setUp, opened) == expected, "where the log lies");
}

void CheckAgents(const std::string& directory, const std::string& name)
{
    const std::array<AgentLibrary, 3> libraries{
        {{"Agent", "NAgent", "", ""}, {name, "A", "", ""}, {name, "B", "", ""}}};
    const AgentLibrary* found = FindAgentLibrary(libraries, name);
    Promise(found == &libraries[SameLetters(name, "agent") ? 0 : 1], "the first row of the name");
    Promise(FindAgentLibrary({}, name) == nullptr, "no row, no library");
    const auto path = AgentLibraryPath(directory, name, NoLeadByte);
    const bool drive = directory.size() >= 3 && std::isalpha(static_cast<unsigned char>(directory[0])) != 0 &&
                       directory[1] == ':' && directory[2] == '\\';
    const bool share = directory.size() > 2 && directory[0] == '\\' && directory[1] == '\\';
    Promise(path.has_value() == ((drive || share) && !name.empty()), "only a full path is a library's directory");
    Promise(!path || *path == directory + (directory.back() == '\\' ? "" : "\\") + name + ".DLL", "directory and name");
}

void CheckPolling(FuzzedDataProvider& input)
{
    int looks = 0;
    int waits = 0;
    ServicePoll last = ServicePoll::Pending;
    const bool starts = input.ConsumeBool();
    const bool reached = PollService(
        [&] {
            ++looks;
            const unsigned long state = input.ConsumeIntegralInRange<unsigned long>(0, 8);
            last = starts ? LookAtStart(state) : LookAtStop(state);
            Promise((last == ServicePoll::Reached) == (state == (starts ? 4UL : 1UL)), "running, or stopped");
            return last;
        },
        [&] { ++waits; });
    Promise(looks >= 1 && looks <= kServicePolls && waits == looks - 1, "51 looks at most, a wait between two");
    Promise(reached == (last == ServicePoll::Reached), "what the last look saw");
    Promise(last != ServicePoll::Pending || looks == kServicePolls, "no look is given away");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const std::string text = input.ConsumeRandomLengthString(1500);
    CheckMultiString(text);
    CheckTexts(text, ' ');
    CheckTexts(text, input.ConsumeIntegral<char>());
    CheckCharacters(text, input.ConsumeIntegral<uint32_t>());
    CheckRules(input, text);
    CheckTwoByteText(text, input.ConsumeIntegralInRange<std::size_t>(0, 300));
    for (int arguments = 0; arguments <= 4; ++arguments) {
        CheckFormat(text, arguments);
    }
    CheckDecimal(input.ConsumeIntegral<int32_t>());
    CheckDecimal(input.PickValueInArray({0, 999999999, 1000000000, -99999999, -100000000, INT32_MIN, INT32_MAX}));
    CheckAgents(text, input.ConsumeRandomLengthString(12));
    CheckPolling(input);
    CheckTraceLine(input, text);
    CheckBoundedCopies(input, text);
    return 0;
}
