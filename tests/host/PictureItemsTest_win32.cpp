#include "tests/host/PictureItemsFixture.h"

#include <gmock/gmock.h>

#include <windows.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(PictureItems, OneFileByNamesOfDifferentCaseIsOneItem)
{
    m_folder.Write("Sub/A.jpg", "x");
    m_folder.Write("Sub/a.tif", "x");
    const auto collection = Collect({"Sub/A.jpg", "sub/a.JPG", "SUB/A.TIF"});
    EXPECT_THAT(Told(collection, m_folder.Path()), ElementsAre("Sub/A[jpg;TIF]"));
}

TEST_F(PictureItems, AWalkLeavesOutFilesThatAreMarkedAsHidden)
{
    m_folder.Write("p/a.jpg", "x");
    const auto hidden = m_folder.Write("p/b.jpg", "x");
    ASSERT_TRUE(SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN));
    EXPECT_THAT(Told(Collect({"p"}, true), m_folder.Path()), ElementsAre("p/a[jpg]"));
}

TEST_F(PictureItems, NamesOfEveryScriptSurvive)
{
    const std::wstring name = L"caf\u00E9 \u6F22\u5B57 \U0001F4F7.jpg";
    m_folder.Write(name, "x");
    const auto collection = Collect({name});
    ASSERT_EQ(collection.items.size(), 1u);
    EXPECT_EQ(collection.items[0].File(0).filename().native(), name);
}
