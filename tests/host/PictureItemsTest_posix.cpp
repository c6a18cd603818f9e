#include "tests/host/PictureItemsFixture.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(PictureItems, ALinkBackIntoAFolderIsNotFollowed)
{
    m_folder.Write("p/deep/x.gif", "x");
    fs::create_directory_symlink(m_folder.Path() / "p", m_folder.Path() / "p/deep/back");
    EXPECT_THAT(Told(Collect({"p"}, true), m_folder.Path()), ElementsAre("p/deep/x[gif]"));
}

TEST_F(PictureItems, NamesThatDifferInCaseAreTwoPictures)
{
    for (const char *name : {"A.jpg", "A.JPG", "A.tif", "a.jpg"})
    {
        m_folder.Write(name, "x");
    }
    EXPECT_THAT(Told(Collect({"A.jpg", "A.JPG", "A.tif", "a.jpg"}), m_folder.Path()),
                ElementsAre("A[jpg;tif]", "A[JPG]", "a[jpg]"));
}

TEST_F(PictureItems, WhatOnlyLooksLikeAFileIsRefused)
{
    fs::create_symlink("nowhere.jpg", m_folder.Path() / "broken.jpg");
    ASSERT_EQ(::mkfifo((m_folder.Path() / "pipe.jpg").c_str(), 0600), 0);
    EXPECT_THAT(ReasonFor("broken.jpg"), HasSubstr("link to a file that isn't there"));
    EXPECT_THAT(ReasonFor("pipe.jpg"), HasSubstr("not an ordinary file"));
}

TEST_F(PictureItems, NamesOfAnyBytesSurvive)
{
    const std::string name = "caf\xE9 \xF0\x9F\x93\xB7\n.jpg";
    m_folder.Write(name, "x");
    const auto collection = Collect({name});
    ASSERT_EQ(collection.items.size(), 1u);
    EXPECT_EQ(collection.items[0].File(0).filename().native(), name);
}
