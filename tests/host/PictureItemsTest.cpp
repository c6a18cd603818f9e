#include "tests/host/PictureItemsFixture.h"

#include "host/FileNames.h"
#include "host/PublishedBefore.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(PictureItems, FilesThatDifferOnlyInExtensionAreOneItemInTheOrderGiven)
{
    for (const char *name : {"b.jpg", "a.tif", "a.JPG", "a.b.png", "sub/a.jpg"})
    {
        m_folder.Write(name, "x");
    }
    const auto collection = Collect({"b.jpg", "a.tif", "sub/a.jpg", "a.JPG", "a.b.png", "b.jpg", "sub/../b.jpg"});
    EXPECT_THAT(Told(collection, m_folder.Path()), ElementsAre("b[jpg]", "a[tif;JPG]", "sub/a[jpg]", "a.b[png]"));
    EXPECT_EQ(collection.items[1].File(1), m_folder.Path() / "a.JPG");
    EXPECT_THAT(collection.refused, IsEmpty());
}

TEST_F(PictureItems, AWalkIsInNaturalOrderAndLeavesOutWhatIsHiddenOrNoPicture)
{
    for (const char *name : {"p/img10.jpg", "p/img2.jpg", "p/IMG1.jpg", "p/img2.xmp", "p/notes.txt",
                             "p/.secret.jpg", "p/.thumbs/t.jpg", "p/deep/er/x.gif"})
    {
        m_folder.Write(name, "x");
    }
    const auto collection = Collect({"p"}, true);
    EXPECT_THAT(Told(collection, m_folder.Path()),
                ElementsAre("p/deep/er/x[gif]", "p/IMG1[jpg]", "p/img2[jpg]", "p/img10[jpg]"));
    EXPECT_EQ(m_looks, 4);
    EXPECT_THAT(collection.refused, IsEmpty());
}

TEST_F(PictureItems, ACopyOfAnotherIsLeftOutAndSaysOfWhich)
{
    for (const auto &[name, bytes] : {std::pair("a.jpg", "same"),
                                      {"b.png", "other"},
                                      {"sub/c.jpg", "same"},
                                      {"d.jpg", "unlike"},
                                      {"d.tif", "other"},
                                      {"e.jpg", "size"}})
    {
        m_folder.Write(name, bytes);
    }
    ItemCollection collection = Collect({"a.jpg", "b.png", "sub/c.jpg", "d.jpg", "d.tif", "e.jpg"});
    LeaveOutCopies(collection);
    EXPECT_THAT(Told(collection, m_folder.Path()), ElementsAre("a[jpg]", "b[png]", "e[jpg]"));
    ASSERT_EQ(collection.copies.size(), 2u);
    EXPECT_EQ(collection.copies[0].path, m_folder.Path() / "sub/c.jpg");
    EXPECT_THAT(collection.copies[0].reason, HasSubstr(ShownPath(m_folder.Path() / "a.jpg")));
    EXPECT_THAT(collection.copies[1].reason, HasSubstr("b.png"));
}

TEST_F(PictureItems, EveryFileThatCanNotBePublishedIsRefusedInWords)
{
    m_folder.Write("empty.jpg", "");
    m_folder.Write("noextension", "x");
    m_folder.Write("text.txt", "x");
    m_folder.Write("big.jpg", "x");
    fs::resize_file(m_folder.Path() / "big.jpg", 0x100000000);

    EXPECT_THAT(ReasonFor("gone.jpg"), HasSubstr("isn't there"));
    EXPECT_THAT(ReasonFor("empty.jpg"), HasSubstr("empty"));
    EXPECT_THAT(ReasonFor("big.jpg"), HasSubstr("4294967296 bytes"));
    EXPECT_THAT(ReasonFor("noextension"), HasSubstr("no extension"));
    EXPECT_THAT(ReasonFor("text.txt"), HasSubstr("(.txt)"));
}

TEST_F(PictureItems, SidecarsAndPicturelessFoldersAreToldApartFromFailures)
{
    m_folder.Write("a.jpg", "x");
    m_folder.Write("a.xmp", "x");
    m_folder.Write("docs/readme.txt", "x");
    const auto collection = Collect({"a.jpg", "a.xmp", "docs"}, true);
    EXPECT_THAT(collection.passedOver, ElementsAre(m_folder.Path() / "a.xmp"));
    EXPECT_THAT(collection.empty, ElementsAre(m_folder.Path() / "docs"));
    EXPECT_TRUE(collection.refused.empty());
}

TEST(NaturalOrderTest, NumbersCountByValueAndNoTwoNamesAreEqual)
{
    std::vector<std::string> names = {"a10", "a9", "A1", "a01", "a1", "b", "a", "a1b", "a99999999999999999999999"};
    std::sort(names.begin(), names.end(), NaturallyBefore);
    EXPECT_THAT(names, ElementsAre("a", "A1", "a01", "a1", "a1b", "a9", "a10", "a99999999999999999999999", "b"));
    for (const auto &a : names)
    {
        for (const auto &b : names)
        {
            EXPECT_EQ(NaturallyBefore(a, b) || NaturallyBefore(b, a), a != b) << a << " " << b;
        }
    }
}
