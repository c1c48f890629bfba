#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "Machine.h"
#include "RegistryTree.h"

/// Looks values up in the current control set or below the root, and says where they are.
class RegistryFacts
{
public:
    /// @param controlSets  Names of control sets; the first that has a key answers for it.
    /// @param isComplete   What is not in the tree is not in the registry either.
    RegistryFacts(const RegistryTree& tree, std::span<const std::string> controlSets, EightBitText text,
                  bool isComplete)
        : m_tree(tree), m_controlSets(controlSets), m_text(text), m_isComplete(isComplete)
    {
    }

    /// @param path  Below the root, or "*\..." below the control set.
    [[nodiscard]] const RegistryKey* FindKey(std::string_view path) const;
    /// @return the value; without one, why there is none.
    [[nodiscard]] Fact<EightBitValue> Value(std::string_view path, std::string_view name) const;
    [[nodiscard]] Fact<std::string> Text(std::string_view path, std::string_view name) const;
    [[nodiscard]] Fact<uint32_t> Number(std::string_view path, std::string_view name) const;
    [[nodiscard]] const EightBitText& Converter() const { return m_text; }
    [[nodiscard]] bool IsComplete() const { return m_isComplete; }

private:
    struct Place
    {
        const RegistryKey* key = nullptr;
        std::string path; ///< as a message shows it
    };
    [[nodiscard]] Place Locate(std::string_view path) const;

    const RegistryTree& m_tree;
    std::span<const std::string> m_controlSets;
    EightBitText m_text;
    bool m_isComplete;
};

[[nodiscard]] SystemDescription ReadSystemDescription(const RegistryFacts& facts);
[[nodiscard]] RestartDescription ReadRestartFacts(const RegistryFacts& facts, const SystemDescription& system);
