#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

class ModelSection;

/// What became of one INF file of a directory in one search.
enum class InfVerdict
{
    ListsDevice,    ///< it qualifies and lists the device: the search ends here
    Excluded,       ///< the setup INI leaves it out
    OtherSignature, ///< its signature is that of other systems, missing or unreadable
    OtherBrand,     ///< no manufacturer is one of our brands
    NotListed,      ///< it qualifies, and none of the model sections lists the device
};

/// Places of the search at which the installer makes a call whose result is not used.
enum class SearchStep
{
    DirectoryResolved, ///< a directory of the setup INI is about to be made absolute
    DescriptionSought, ///< a device description is about to be read
    DescriptionCopied, ///< a section has lines, and the description key of the first is about to be copied
    DescriptionTooLong ///< a line's description key does not fit and counts as empty
};

/// Listens to a search. The installer's listener traces and fills the driver store; a planner's takes notes. The calls
/// come in the order of the installer's own calls.
class SearchLog
{
public:
    virtual ~SearchLog() = default;

    /// One line of trace in pieces, without the program's name before it. A line has its own line feed where it wants
    /// one.
    virtual void SayPieces(std::span<const std::string_view> pieces) = 0;

    /// Hands an INF that qualifies to the driver store. Called once per file name and run.
    /// @param sourceDirectory  Where its driver files lie; ends with a backslash.
    virtual void Store(const std::string& infPath, const std::string& sourceDirectory) = 0;

    virtual void Reached(SearchStep /*step*/) {}

    /// A device's search begins one of its passes.
    virtual void PassBegins(int /*pass*/, std::string_view /*searchId*/) {}

    /// A model section was searched. Its VerdictOn says what became of each of its lines.
    /// @param match  Number of the line that lists the device.
    virtual void SectionSearched(std::string_view /*infPath*/, std::string_view /*sectionName*/,
                                 const ModelSection& /*section*/, std::optional<std::size_t> /*match*/)
    {
    }

    /// A file of a directory was judged.
    virtual void InfJudged(const std::string& /*infPath*/, InfVerdict /*verdict*/) {}

    /// @param pieces  Each a text that turns into a std::string_view; a null pointer is not one.
    template <class... Pieces>
    void Say(const Pieces&... pieces)
    {
        const std::array<std::string_view, sizeof...(Pieces)> views{pieces...};
        SayPieces(views);
    }
};
