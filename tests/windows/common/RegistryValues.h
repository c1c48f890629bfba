#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "OrvRegKey.h"
#include "RegistryKeys.h"

/// A scratch key, open for writing as `key`; `closed` is not open and has status 2 from its last call.
class RegistryValues : public ::testing::Test
{
protected:
    RegistryValues()
    {
        CreateRegistryKey(scratch.Path());
        key.Open(HKEY_LOCAL_MACHINE, scratch.Path(), true);
        closed.Open(HKEY_LOCAL_MACHINE, scratch.Path() + "\\missing", false);
    }

    [[nodiscard]] std::string Bytes(const std::string& name) const
    {
        const std::optional<RegistryValue> value = ReadRegistryValue(scratch.Path(), name);
        return value ? value->bytes : "<none>";
    }
    [[nodiscard]] DWORD Type(const std::string& name) const
    {
        const std::optional<RegistryValue> value = ReadRegistryValue(scratch.Path(), name);
        return value ? value->type : 0xFFFFFFFF;
    }
    // Stores text as it is. The platform itself adds a terminator to one that ends right before a zero byte.
    void SetUnterminated(const char* name, std::string text, DWORD type) const
    {
        text += '#';
        ASSERT_EQ(RegSetValueExA(key.GetHKey(), name, 0, type, reinterpret_cast<const BYTE*>(text.data()),
                                 static_cast<DWORD>(text.size() - 1)),
                  ERROR_SUCCESS);
        ASSERT_EQ(Bytes(name).size(), text.size() - 1);
    }
    // The list as the library reads it.
    [[nodiscard]] std::vector<std::string> List(const char* name)
    {
        std::vector<COrvString> list;
        EXPECT_TRUE(key.GetValue(name, list));
        std::vector<std::string> texts;
        for (const COrvString& text : list) {
            texts.push_back(text.Text());
        }
        return texts;
    }

    ScratchRegistryKey scratch{R"(SOFTWARE\Orv value test)"};
    COrvRegKey key;
    COrvRegKey closed;
};
