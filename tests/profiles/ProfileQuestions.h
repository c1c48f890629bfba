#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One call of the platform's private-profile functions.
struct ProfileQuestion
{
    enum class Call
    {
        String,
        Section
    };

    Call call = Call::String;
    std::optional<std::string> section;
    std::optional<std::string> key;         ///< for Call::String
    std::optional<std::string> defaultText; ///< for Call::String
    uint32_t bufferBytes = 0;
};

/// The buffers by which the program asks: the signature and the names of a manufacturer section's keys, a value of the
/// setup INI and its first section buffer, a manufacturer's value, the section buffer once grown, exclusions, a model
/// section.
inline constexpr auto kProgramBufferBytes = std::to_array<uint32_t>({100, 260, 500, 520, 1024, 32767});

/// @return questions about a file, the same for a content on every machine: names that the file has, spelt in several
///         ways, names that it lacks, and missing names. Each is asked with one of the program's buffers, a tiny one,
///         one of about the answer's size and one below it. A whole section is never asked with a buffer below two
///         bytes, because the platform then writes outside of it.
[[nodiscard]] std::vector<ProfileQuestion> QuestionsAbout(const std::string& content);

/// @return a question in one line, for messages.
[[nodiscard]] std::string Describe(const ProfileQuestion& question);
/// @return bytes as a string literal.
[[nodiscard]] std::string Quoted(const std::string& bytes);
