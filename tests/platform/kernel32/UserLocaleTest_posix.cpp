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

    static WideText Format(const WCHAR *value)
    {
        WCHAR text[64];
        return GetNumberFormatW(LOCALE_USER_DEFAULT, 0, value, nullptr, text, ARRAYSIZE(text)) > 0
                   ? text
                   : TEXT("failed");
    }

private:
    std::map<std::string, std::optional<std::string>> m_saved;
};

TEST_F(UserLocale, IsReadAtEachCall)
{
    const struct
    {
        const char *locale;
        LCID id;
        const WCHAR *number;
    } cases[] = {
        {"C", 0x0409, u"-1,234,567.89"},
        {"POSIX", 0x0409, u"-1,234,567.89"},
        {"C.UTF-8", 0x0409, u"-1,234,567.89"},
        {"en_US.UTF-8", 0x0409, u"-1,234,567.89"},
        {"de_DE.UTF-8", 0x0407, u"-1.234.567,89"},
        {"de_DE@euro", 0x0407, u"-1.234.567,89"},
        {"de_CH.UTF-8", 0x0807, u"-1\u2019234\u2019567.89"},
        {"fr_FR.UTF-8", 0x040C, u"-1\u202F234\u202F567,89"},
        {"hi_IN.UTF-8", 0x0439, u"-12,34,567.89"},
        {"ar_EG.UTF-8", 0x0C01, u"\u200E-1,234,567.89"},
        {"fa_IR.UTF-8", 0x0429, u"\u200E\u22121,234,567.89"},
        {"xx_YY.UTF-8", 0x0409, u"-1,234,567.89"},
    };
    for (const auto &c : cases)
    {
        setenv("LC_ALL", c.locale, 1);
        EXPECT_EQ(Format(u"-1234567.891"), c.number) << c.locale;
        EXPECT_EQ(GetUserDefaultLCID(), c.id) << c.locale;
    }
}

TEST_F(UserLocale, GroupsFourDigitsAlsoWhereICUWouldNot)
{
    setenv("LC_ALL", "es_ES.UTF-8", 1);
    EXPECT_EQ(Format(u"1234"), u"1.234,00");
}

TEST_F(UserLocale, ComesFromTheFirstVariableThatSaysAnything)
{
    EXPECT_EQ(GetUserDefaultLCID(), 0x0409u);
    setenv("LANG", "de_DE.UTF-8", 1);
    EXPECT_EQ(GetUserDefaultLCID(), 0x0407u);
    setenv("LC_NUMERIC", "fr_FR.UTF-8", 1);
    EXPECT_EQ(GetUserDefaultLCID(), 0x040Cu);
    setenv("LC_ALL", "", 1);
    EXPECT_EQ(GetUserDefaultLCID(), 0x040Cu);
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(GetUserDefaultLCID(), 0x0409u);
}
} // namespace
