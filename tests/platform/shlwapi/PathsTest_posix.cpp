#include "com/WideText.h"

#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <utility>

namespace
{
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
