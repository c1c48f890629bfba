#pragma once

/// The platform whose reading of INI and INF files is reproduced.
enum class ProfileDialect
{
    Wine,
    Windows
};

/// Every difference between the two platforms; in all else they are alike.
/// The column of Wine is measured (8.0). The column of Windows is documented by others and not yet seen on a machine.
struct DialectRules
{
    /// The name of "[a]b]" ends at its last bracket ("a]b"), not at its first ("a").
    bool nameEndsAtLastBracket;
    /// "[a" begins a section as well; otherwise it is a line of the section before it.
    bool unclosedNameBeginsSection;
    /// The mark of a UTF-8 file is skipped and the file is read as UTF-8. Otherwise the mark is text of an 8-bit file,
    /// so that a section in the first line is lost.
    bool readsUtf8Mark;
    /// A file with the mark of UTF-16 in big-endian order is read. Otherwise it is taken for an 8-bit file.
    bool readsBigEndian;
    /// Tabs and other control blanks around the names in a question for one value are stripped, not only spaces.
    bool stripsTabsOfQuestion;
    /// Lines before the first section belong to a section without a name, which a question for "" finds.
    bool linesBeforeFirstSection;
    /// The letters A to Z alone are equal in both cases; otherwise all letters of an 8-bit code page are.
    bool foldsAsciiOnly;
    /// A whole section shows "key=value" without the blanks around the equals sign.
    bool sectionLosesBlanksAtEquals;
    /// A quoted value that fits without its closing quote only just loses its last character.
    bool quoteCostsCharacter;
};

[[nodiscard]] constexpr DialectRules RulesOf(ProfileDialect dialect)
{
    constexpr DialectRules kWine{.nameEndsAtLastBracket = true,
                                 .unclosedNameBeginsSection = false,
                                 .readsUtf8Mark = true,
                                 .readsBigEndian = true,
                                 .stripsTabsOfQuestion = true,
                                 .linesBeforeFirstSection = true,
                                 .foldsAsciiOnly = true,
                                 .sectionLosesBlanksAtEquals = true,
                                 .quoteCostsCharacter = true};
    constexpr DialectRules kWindows{.nameEndsAtLastBracket = false,
                                    .unclosedNameBeginsSection = true,
                                    .readsUtf8Mark = false,
                                    .readsBigEndian = false,
                                    .stripsTabsOfQuestion = false,
                                    .linesBeforeFirstSection = false,
                                    .foldsAsciiOnly = false,
                                    .sectionLosesBlanksAtEquals = false,
                                    .quoteCostsCharacter = false};
    return dialect == ProfileDialect::Wine ? kWine : kWindows;
}
