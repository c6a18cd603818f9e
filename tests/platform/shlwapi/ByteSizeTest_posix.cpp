#include "com/WideText.h"

#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace
{
TEST(ByteSizeByLocale, TakesTheUsersDecimalSeparator)
{
    const char *const value = std::getenv("LC_ALL");
    const std::optional<std::string> saved = value ? std::optional<std::string>(value) : std::nullopt;
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    WCHAR text[64];
    StrFormatByteSizeW(1340, text, ARRAYSIZE(text));
    EXPECT_EQ(WideText(text), u"1,30 KB");
    saved ? setenv("LC_ALL", saved->c_str(), 1) : unsetenv("LC_ALL");
}
} // namespace
