#include "settings/OutputSize.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(OutputSize, IsReadByTheLocaleOfTheMoment)
{
    const char *const variable = std::getenv("LC_ALL");
    const std::string before = variable ? variable : "";
    const std::pair<const char *, INT32> cases[] = {
        {"en_US.UTF-8", 1024}, {"de_DE.UTF-8", 1}, {"en_US.UTF-8", 1024}};
    for (const auto &[locale, pixels] : cases)
    {
        setenv("LC_ALL", locale, 1);
        double dpi;
        OutputSizeUnit unit;
        EXPECT_EQ(OutputSizeToPixels(TEXT("1,024"), dpi, unit), pixels);
    }
    variable ? setenv("LC_ALL", before.c_str(), 1) : unsetenv("LC_ALL");
}
