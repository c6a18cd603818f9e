// The user's locale comes from the environment.
#include "com/WideText.h"

#include <windows.h>
#include <shlwapi.h>

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

    // With two decimals.
    static WideText Format(const WCHAR *value)
    {
        WideText decimal = Read(LOCALE_SDECIMAL);
        WideText thousand = Read(LOCALE_STHOUSAND);
        const NUMBERFMTW format = {2,
                                   1,
                                   Read(LOCALE_SGROUPING) == u"3;2;0" ? 32u : 3u,
                                   decimal.data(),
                                   thousand.data(),
                                   UINT(Read(LOCALE_INEGNUMBER)[0] - '0')};
        WCHAR text[64];
        return GetNumberFormatW(LOCALE_USER_DEFAULT, 0, value, &format, text, ARRAYSIZE(text)) > 0
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
        const WCHAR *number;
    } cases[] = {
        {"C", u"-1,234,567.89"},
        {"POSIX", u"-1,234,567.89"},
        {"C.UTF-8", u"-1,234,567.89"},
        {"en_US.UTF-8", u"-1,234,567.89"},
        {"de_DE.UTF-8", u"-1.234.567,89"},
        {"de_DE@euro", u"-1.234.567,89"},
        {"de_CH.UTF-8", u"-1\u2019234\u2019567.89"},
        {"fr_FR.UTF-8", u"-1\u202F234\u202F567,89"},
        {"hi_IN.UTF-8", u"-12,34,567.89"},
        {"ar_EG.UTF-8", u"\u200E-1,234,567.89"},
        {"fa_IR.UTF-8", u"\u200E\u22121,234,567.89"},
        {"xx_YY.UTF-8", u"-1,234,567.89"},
    };
    for (const auto &c : cases)
    {
        setenv("LC_ALL", c.locale, 1);
        EXPECT_EQ(Format(u"-1234567.89"), c.number) << c.locale;
    }
}

TEST_F(UserLocale, GroupsFourDigitsAlsoWhereICUWouldNot)
{
    setenv("LC_ALL", "es_ES.UTF-8", 1);
    EXPECT_EQ(Format(u"1234.00"), u"1.234,00");
    EXPECT_EQ(Format(u"-0.00"), u"0,00");
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
