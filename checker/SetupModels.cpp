#include "SetupModels.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "CopiedFiles.h"
#include "EqualsIgnoringCase.h"

namespace {
/// "NT[processor][.major[.minor[.product[.suite[.build]]]]]"
struct Decoration
{
    std::string_view processor;
    std::array<std::optional<uint32_t>, 5> numbers; ///< major, minor, product, suite, build
};
constexpr std::size_t kMajor = 0;
constexpr std::size_t kMinor = 1;
constexpr std::size_t kProduct = 2;
constexpr std::size_t kSuite = 3;

std::optional<Decoration> ParseDecoration(std::string_view text)
{
    if (!EqualsIgnoringCase(text.substr(0, 2), "NT")) {
        return std::nullopt;
    }
    text.remove_prefix(2);
    Decoration decoration;
    decoration.processor = text.substr(0, text.find('.'));
    text.remove_prefix(decoration.processor.size());
    for (std::optional<uint32_t>& number : decoration.numbers) {
        if (text.empty()) {
            break;
        }
        text.remove_prefix(1);
        const std::string_view part = text.substr(0, text.find('.'));
        text.remove_prefix(part.size());
        const int base = part.starts_with("0x") || part.starts_with("0X") ? 16 : 10;
        const std::string_view digits = part.substr(base == 16 ? 2 : 0);
        uint32_t value = 0;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), value, base).ec == std::errc()) {
            number = value;
        }
    }
    return decoration;
}

bool Applies(const Decoration& decoration, const SetupSystem& system)
{
    // Without a processor a decoration counts on x86 only.
    if (!EqualsIgnoringCase(decoration.processor.empty() ? "x86" : decoration.processor, system.processor)) {
        return false;
    }
    const auto wanted = std::pair(decoration.numbers[kMajor].value_or(0), decoration.numbers[kMinor].value_or(0));
    const std::optional<uint32_t> product = decoration.numbers[kProduct];
    return wanted <= std::pair(system.majorVersion, system.minorVersion) &&
           (!product || *product == 0 || *product == system.productType);
}

/// @return the better of two that apply comes first.
bool IsBetter(const Decoration& left, const Decoration& right)
{
    const auto rank = [](const Decoration& decoration) {
        std::array<uint32_t, 5> numbers{};
        std::ranges::transform(decoration.numbers, numbers.begin(), [](auto number) { return number.value_or(0); });
        return std::pair(numbers, !decoration.processor.empty());
    };
    return rank(left) > rank(right);
}

std::string Decorated(const std::string& models, const std::string& decoration)
{
    return models + "." + decoration;
}

void AddSectionsOf(const ModelsOfMaker& maker, const SetupInf& inf, const SetupSystem& system,
                   std::vector<std::string>& sections)
{
    const std::string* best = nullptr;
    std::optional<Decoration> bestParts;
    for (const std::string& text : maker.decorations) {
        const std::optional<Decoration> parts = ParseDecoration(text);
        if (!parts || !Applies(*parts, system)) {
            continue;
        }
        if (parts->numbers[kSuite].value_or(0) != 0) {
            sections.push_back(Decorated(maker.models, text));
        } else if (!bestParts || IsBetter(*parts, *bestParts)) {
            best = &text;
            bestParts = parts;
        }
    }
    if (best != nullptr) {
        sections.push_back(Decorated(maker.models, *best));
    } else if (inf.HasSection(maker.models)) {
        sections.push_back(maker.models);
    }
}
} // namespace

std::vector<std::string> ModelsOfMaker::SectionNames() const
{
    std::vector<std::string> names{models};
    for (const std::string& decoration : decorations) {
        names.push_back(Decorated(models, decoration));
    }
    return names;
}

std::vector<ModelsOfMaker> MakersOf(const SetupInf& inf)
{
    std::vector<ModelsOfMaker> makers;
    for (const SetupInf::Line& line : inf.LinesOf("Manufacturer")) {
        ModelsOfMaker& maker = makers.emplace_back();
        // A maker without a value has the models of its own name.
        maker.models = line.Field(0).empty() ? line.key : line.Field(0);
        for (std::size_t field = 1; field < line.fields.size(); ++field) {
            if (!line.fields[field].empty()) {
                maker.decorations.emplace_back(line.fields[field]);
            }
        }
    }
    return makers;
}

std::vector<SetupSystem> ProductsOf(OSCode system, const SystemFacts& facts)
{
    std::vector<SetupSystem> products;
    const auto add = [&](uint8_t product) {
        products.push_back({.processor = ProcessorOf(system),
                            .majorVersion = facts.majorVersion,
                            .minorVersion = facts.minorVersion,
                            .productType = product});
    };
    const bool sharesSection = RowOf(system).sectionKey == RowOf(osWINEIGHTSRV32E).sectionKey;
    if (facts.productType == kProductWorkstation || sharesSection) {
        add(kProductWorkstation);
    }
    if (facts.productType != kProductWorkstation || sharesSection) {
        add(kProductServer);
        add(kProductDomainController);
    }
    return products;
}

std::vector<std::string> SectionsOfSetup(const SetupInf& inf, const std::vector<ModelsOfMaker>& makers,
                                         const SetupSystem& system)
{
    std::vector<std::string> sections;
    for (const ModelsOfMaker& maker : makers) {
        AddSectionsOf(maker, inf, system, sections);
    }
    return sections;
}
