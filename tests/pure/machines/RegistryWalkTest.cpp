#include "RegistryWalk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace {
/// A registry in which every key has the same sub-keys, and every value is there.
class EndlessRegistry : public RegistryView
{
public:
    explicit EndlessRegistry(std::vector<std::u16string> names) : m_names(std::move(names)) {}

    [[nodiscard]] std::optional<Key> Root() override { return 0; }
    [[nodiscard]] std::optional<Key> Open(Key, const StoredName&) override { return 0; }
    [[nodiscard]] std::vector<SubKey> SubKeys(Key) override
    {
        ++m_listed;
        std::vector<SubKey> found;
        for (const std::u16string& name : m_names) {
            found.push_back({.name = {.units = name, .wide = true}, .key = 0});
        }
        return found;
    }
    [[nodiscard]] std::optional<StoredValue> Value(Key, std::string_view) override
    {
        return StoredValue{.type = kRegistryNumber, .bytes = std::string(4, '\0'), .wide = true};
    }
    /// @return how often sub-keys were asked for.
    [[nodiscard]] int Listed() const { return m_listed; }

private:
    std::vector<std::u16string> m_names;
    int m_listed = 0;
};

std::vector<std::u16string> Numbers(int count)
{
    std::vector<std::u16string> names;
    for (int number = 0; number < count; ++number) {
        const std::string digits = std::to_string(number);
        names.emplace_back(digits.begin(), digits.end());
    }
    return names;
}
} // namespace

TEST(RegistryWalk, GoesIntoAKeyThatIsListedOftenOnce)
{
    EndlessRegistry once({u"a"});
    EndlessRegistry often({u"a", u"A", u"a", u"a"});
    RegistryTree tree;
    EXPECT_EQ("", CopyWantedKeys(once, "SYSTEM", "ControlSet001", tree));
    EXPECT_EQ("", CopyWantedKeys(often, "SYSTEM", "ControlSet001", tree));
    EXPECT_EQ(once.Listed(), often.Listed());
    EXPECT_EQ(1U, tree.Find(R"(SYSTEM\ControlSet001\Enum\PCI)")->keys.size());
}

TEST(RegistryWalk, StopsAfterMoreKeysThanAnyMachineHas)
{
    // A million instances.
    EndlessRegistry registry(Numbers(1000));
    RegistryTree tree;
    EXPECT_EQ("more keys than any machine has", CopyWantedKeys(registry, "SYSTEM", "ControlSet001", tree));
    EXPECT_LT(registry.Listed(), 200);
}

TEST(RegistryWalk, SaysThatTheTreeIsFull)
{
    EndlessRegistry registry(Numbers(10));
    RegistryTree small(5000);
    EXPECT_EQ("more devices and values than any machine has",
              CopyWantedKeys(registry, "SYSTEM", "ControlSet001", small));
    EndlessRegistry one({u"a"});
    // Enough for the keys of the path, not for the values of the last one.
    RegistryTree smaller(6 * 400 + 100);
    EXPECT_EQ("more devices and values than any machine has", CopyWantedKeys(one, "SYSTEM", "ControlSet001", smaller));
}
