#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// The library's 8-bit string: the type of its registry names and values, paths and messages.
class COrvString
{
public:
    COrvString() = default;
    /// A null pointer gives an empty string.
    COrvString(const char* text);
    COrvString(std::string text) : m_text(std::move(text)) {}
    /// Decimal text of the number. A number that needs 10 characters or more (1000000000, or anything below -99999999)
    /// is reported as an invalid parameter and gives an empty string.
    COrvString(int number);
    /// Converts with the thread's ANSI code page. A null pointer gives an empty string, as does a text whose 8-bit form
    /// takes more than two bytes for each wide character.
    COrvString(const wchar_t* text);

    COrvString& operator=(const char* text);
    COrvString& operator=(const std::string& text);
    COrvString& operator=(int number);

    operator const char*() const { return m_text.c_str(); }
    /// A new BSTR with the text, converted with the thread's ANSI code page; null when it cannot be converted. The
    /// caller frees it with SysFreeString, so this conversion is explicit.
    explicit operator wchar_t*() const;
    // The pointer to the text is never null, so a test of it would say nothing.
    explicit operator bool() const = delete;

    [[nodiscard]] const std::string& Text() const { return m_text; }
    /// @return a copy on the heap; the caller deletes it.
    [[nodiscard]] COrvString* Copy() const { return new COrvString(*this); }
    void ClearString() { m_text.clear(); }
    [[nodiscard]] bool IsEmpty() const { return m_text.empty(); }
    [[nodiscard]] size_t Length() const { return m_text.length(); }

    // Exact, byte by byte. Bytes compare as unsigned.
    bool operator==(const char* other) const { return other != nullptr && m_text == other; }
    bool operator==(const COrvString& other) const { return m_text == other.m_text; }
    bool operator==(const std::string& other) const { return m_text == other; }
    bool operator<(const COrvString& other) const { return m_text < other.m_text; }
    friend COrvString operator+(const COrvString& left, const COrvString& right) { return left.m_text + right.m_text; }

    // Only the space 0x20 is trimmed.
    void TrimLeft();
    void TrimRight();
    void Trim();

    // Case folding of the runtime's current locale.
    void MakeUpper();
    void MakeLower();
    /// @return true when the texts are equal, ignoring letter case.
    [[nodiscard]] bool CompareI(COrvString other) const;

    [[nodiscard]] static bool IsAlphaChar(char c);
    [[nodiscard]] static bool IsNumericChar(char c);
    /// Printable ASCII that is neither letter nor digit; the space is symbolic.
    [[nodiscard]] static bool IsSymbolicChar(char c);
    [[nodiscard]] static bool IsHexadecimal(char c);

    /// @param allowed  1 letters, 2 digits, 4 symbols, combined; other bits are ignored.
    /// @return false when the text holds a character of a class that is not allowed.
    [[nodiscard]] bool IsStringType(unsigned long allowed) const;
    [[nodiscard]] bool IsStringHexadecimal() const;

    /// Splits the text. A trailing separator adds no empty last part.
    /// @return true when the text holds a separator; otherwise `parts` is empty.
    bool Split(char separator, std::vector<COrvString>& parts) const;

    /// Replaces the text by formatted text, cut after 1023 characters. A null format or a lack of memory changes
    /// nothing; a conversion that fails leaves what was written before it.
    /// @return the number of characters, -1 when the text was cut, 0 when it cannot be formatted.
    int FormatString(const char* format, ...) __attribute__((format(ms_printf, 2, 3)));

    /// Loads a text from a module's string table.
    /// @return its length, 0 (with an empty text) when there is none, 0 at once (text unchanged) for a null module.
    int LoadStringA(HINSTANCE module, unsigned long id);

    /// @return the locale's ANSI code page; the system's for locale 0.
    [[nodiscard]] static unsigned GetCodePage(LCID locale);

    /// Converts 8-bit to wide text.
    /// @param source        Text to convert.
    /// @param sourceLength  Its length in bytes, or -1 for a terminated text, whose terminator is converted too.
    /// @param target        Receives the text. Its last character is always replaced by the terminator, even for a
    ///                      source with a length.
    /// @param targetLength  Room in `target` in characters, or -1 for "as long as it needs to be".
    /// @return the number of characters that the whole text takes, even when `target` received fewer. Below 1 on
    ///         failure: 0 for a null target, a target length of 0 or below -1, or a source length below -1, else the
    ///         platform's result.
    static int OrvMultiByteToWideChar(unsigned codePage, unsigned long flags, const char* source, int sourceLength,
                                      wchar_t* target, int targetLength);
    /// The other direction; as above, with the platform's default character and used-default flag (both may be null).
    static int OrvWideCharToMultiByte(unsigned codePage, unsigned long flags, const wchar_t* source, int sourceLength,
                                      char* target, int targetLength, const char* defaultChar, BOOL* usedDefault);

    /// Converts a terminated text into a new array.
    /// @param target  Must be null; receives the array, to be freed with the matching _dealloc.
    /// @return the number of characters with the terminator; 0 when `target` is not null, when the text cannot be
    ///         converted or when there is no memory.
    static int OrvMultiByteToWideChar_alloc(unsigned codePage, unsigned long flags, const char* source,
                                            wchar_t*& target);
    static int OrvWideCharToMultiByte_alloc(unsigned codePage, unsigned long flags, const wchar_t* source,
                                            char*& target, const char* defaultChar, BOOL* usedDefault);
    /// Frees the result of the matching _alloc and sets the pointer to null. Does nothing for a null pointer.
    static void OrvMultiByteToWideChar_dealloc(wchar_t*& target);
    static void OrvWideCharToMultiByte_dealloc(char*& target);

private:
    enum class LangRes
    {
        Default = 1,
    };

    /// The language has no effect: the platform chooses the string table.
    int LoadStringA(HINSTANCE module, unsigned long id, LangRes language);

    std::string m_text;
};
