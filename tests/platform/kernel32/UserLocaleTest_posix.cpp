// The user's locale comes from the environment.
#include "com/WideText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace
{
class UserLocale : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char *name : {"LC_ALL", "LC_NUMERIC", "LANG"})
        {
            const char *const value = std::getenv(name);
            m_saved[name] = value ? std::optional<std::string>(value) : std::nullopt;
            unsetenv(name);
        }
    }

    void TearDown() override
    {
        for (const auto &[name, value] : m_saved)
        {
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
        }
    }

    static WideText Read(LCTYPE type)
    {
        WCHAR text[16] = {};
        GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, ARRAYSIZE(text));
        return text;
    }

private:
    std::map<std::string, std::optional<std::string>> m_saved;
};

TEST_F(UserLocale, IsThatOfTheName)
{
    const std::pair<const char *, const WCHAR *> separators[] = {{"POSIX", u","},       {"C.UTF-8", u","},
                                                                 {"de_DE@euro", u"."},  {"de_CH.UTF-8", u"\u2019"},
                                                                 {"xx_YY.UTF-8", u","}, {"hi_IN.UTF-8", u","}};
    for (const auto &[locale, separator] : separators)
    {
        setenv("LC_ALL", locale, 1);
        EXPECT_EQ(Read(LOCALE_STHOUSAND), separator) << locale;
    }
    EXPECT_EQ(Read(LOCALE_SGROUPING), u"3;2;0");
}

TEST_F(UserLocale, ComesFromTheFirstVariableThatSaysAnything)
{
    const auto separator = [] { return Read(LOCALE_STHOUSAND); };
    EXPECT_EQ(separator(), u",");
    setenv("LANG", "de_DE.UTF-8", 1);
    EXPECT_EQ(separator(), u".");
    setenv("LC_NUMERIC", "fr_FR.UTF-8", 1);
    EXPECT_EQ(separator(), u"\u202F");
    setenv("LC_ALL", "", 1);
    EXPECT_EQ(separator(), u"\u202F");
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(separator(), u",");
}

} // namespace
