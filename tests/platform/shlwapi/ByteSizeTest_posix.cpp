#include "com/WideText.h"

#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

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

TEST(Paths, TheFileNameStandsBehindTheLastSeparatorOfTheSystem)
{
    const std::pair<const WCHAR *, const WCHAR *> cases[] = {
        {u"/home/user/picture.jpg", u"picture.jpg"},
        {u"picture", u"picture"},
        {u"folder.d/", u"folder.d/"},
        {u"/p/Screenshot 2024-05-01 12:30:05", u"Screenshot 2024-05-01 12:30:05"},
        {u"/p/a\\b", u"a\\b"},
        {u"", u""},
    };
    for (const auto &[path, name] : cases)
    {
        EXPECT_EQ(WideText(PathFindFileNameW(path)), name);
    }
}
} // namespace
