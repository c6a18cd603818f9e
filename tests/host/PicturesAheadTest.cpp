#include "host/PicturesAhead.h"

#include "tests/host/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <wincodec.h>

#include <chrono>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace
{
// Decodes nothing, but notes what it is asked for, and can be held.
class RecordingDecoder
{
public:
    DecodedPicture operator()(const fs::path &file, UINT longEdge, const std::atomic<bool> *stop)
    {
        std::unique_lock lock(m_lock);
        m_asked.push_back(file.filename().string() + (stop != nullptr ? " ahead" : ""));
        m_changed.notify_all();
        while (stop != nullptr && m_held)
        {
            if (*stop)
            {
                throw DecodingError(E_ABORT, "was not finished");
            }
            m_changed.wait_for(lock, 1ms);
        }
        if (file.filename() == m_broken)
        {
            throw DecodingError(WINCODEC_ERR_BADIMAGE, "is damaged");
        }
        DecodedPicture picture;
        picture.width = longEdge;
        picture.height = 1;
        picture.pixels.resize(m_bytes);
        return picture;
    }

    std::vector<std::string> WaitFor(size_t count)
    {
        std::unique_lock lock(m_lock);
        m_changed.wait_for(lock, 20s, [&] { return m_asked.size() >= count; });
        return m_asked;
    }

    std::vector<std::string> Asked()
    {
        const std::lock_guard guard(m_lock);
        return m_asked;
    }

    void Hold(bool held)
    {
        const std::lock_guard guard(m_lock);
        m_held = held;
    }

    std::string m_broken;
    size_t m_bytes = 3;

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<std::string> m_asked;
    bool m_held = false;
};

class PicturesAheadTest : public testing::Test
{
protected:
    void Add(const char *stem, std::vector<std::string> extensions)
    {
        for (const std::string &extension : extensions)
        {
            m_folder.Write(stem + ("." + extension), "x");
        }
        m_items.push_back({m_folder.Path() / stem, std::move(extensions)});
    }

    fs::path File(const char *name) const { return m_folder.Path() / name; }

    TemporaryFolder m_folder;
    std::vector<PictureItem> m_items;
    RecordingDecoder m_decoder;
    PictureDecoder m_decode = [this](const fs::path &file, UINT longEdge, const std::atomic<bool> *stop) {
        return m_decoder(file, longEdge, stop);
    };
};
} // namespace

TEST_F(PicturesAheadTest, MakesTheNextTwoInOrderAndEachOnce)
{
    for (const char *stem : {"a", "b", "c", "d"})
    {
        Add(stem, {"tif"});
    }
    PicturesAhead ahead(m_items, m_decode);
    const char *names[] = {"a.tif", "b.tif", "c.tif", "d.tif"};
    for (size_t i = 0; i < 4; ++i)
    {
        ahead.ItemBegins(i);
        EXPECT_EQ(ahead.Take(File(names[i]), 100)->width, 100u);
        m_decoder.WaitFor(std::min<size_t>(i + 3, 4));
    }
    auto asked = m_decoder.Asked();
    ASSERT_EQ(asked.size(), 4u);
    EXPECT_THAT(asked, testing::IsSupersetOf({"b.tif ahead", "c.tif ahead", "d.tif ahead"}));
    EXPECT_EQ(ahead.Hits(), 3u);
}

TEST_F(PicturesAheadTest, ASecondRequestForTheSameFileIsMadeAnew)
{
    Add("a", {"tif"});
    Add("b", {"tif"});
    PicturesAhead ahead(m_items, m_decode);
    ahead.Take(File("a.tif"), 100);
    ahead.ItemBegins(1);
    m_decoder.WaitFor(2);
    EXPECT_TRUE(ahead.Take(File("b.tif"), 100));
    EXPECT_TRUE(ahead.Take(File("b.tif"), 100));
    EXPECT_EQ(m_decoder.Asked().size(), 3u);
}

TEST_F(PicturesAheadTest, AWrongGuessIsNoResult)
{
    Add("a", {"tif"});
    Add("b", {"tif"});
    PicturesAhead ahead(m_items, m_decode);
    ahead.Take(File("a.tif"), 100);
    m_decoder.WaitFor(2);
    ahead.ItemBegins(1);
    EXPECT_EQ(ahead.Take(File("b.tif"), 50)->width, 50u) << "another size";
    EXPECT_EQ(ahead.Hits(), 0u);
}

TEST_F(PicturesAheadTest, AFileThatChangedIsReadAgain)
{
    Add("a", {"tif"});
    Add("b", {"tif"});
    PicturesAhead ahead(m_items, m_decode);
    ahead.Take(File("a.tif"), 100);
    m_decoder.WaitFor(2);
    m_folder.Write("b.tif", "changed");
    ahead.ItemBegins(1);
    ahead.Take(File("b.tif"), 100);
    EXPECT_EQ(ahead.Hits(), 0u);
    EXPECT_EQ(m_decoder.Asked().back(), "b.tif");
}

TEST_F(PicturesAheadTest, AFailureAheadIsToldWhenItsPictureIsAskedFor)
{
    Add("a", {"tif"});
    Add("b", {"tif"});
    m_decoder.m_broken = "b.tif";
    PicturesAhead ahead(m_items, m_decode);
    EXPECT_NO_THROW(ahead.Take(File("a.tif"), 100));
    m_decoder.WaitFor(2);
    ahead.ItemBegins(1);
    EXPECT_THROW(ahead.Take(File("b.tif"), 100), DecodingError);
}

TEST_F(PicturesAheadTest, LargePicturesWaitAlone)
{
    for (const char *stem : {"a", "b", "c"})
    {
        Add(stem, {"tif"});
    }
    m_decoder.m_bytes = size_t{40} << 20;
    PicturesAhead ahead(m_items, m_decode);
    ahead.Take(File("a.tif"), 0);
    m_decoder.WaitFor(2);
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(m_decoder.Asked(), testing::ElementsAre("a.tif", "b.tif ahead"));
}

TEST_F(PicturesAheadTest, GuessesByExtension)
{
    Add("a", {"jpg", "tif"});
    Add("b", {"gif"});
    Add("c", {"jpg"});
    Add("d", {"webp", "TIF"});
    PicturesAhead ahead(m_items, m_decode);
    ahead.NoteUndecoded(File("a.jpg"));
    ahead.Take(File("a.tif"), 100);
    m_decoder.WaitFor(2);
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(m_decoder.Asked(), testing::Contains("d.TIF ahead"));
    EXPECT_EQ(m_decoder.Asked().size(), 2u);
}

TEST_F(PicturesAheadTest, StoppingEndsWhatIsBeingMade)
{
    Add("a", {"tif"});
    Add("b", {"tif"});
    m_decoder.Hold(true);
    PicturesAhead ahead(m_items, m_decode);
    ahead.Take(File("a.tif"), 100);
    m_decoder.WaitFor(2);
    ahead.Stop();
    ahead.Stop();
    ahead.Take(File("a.tif"), 100);
    EXPECT_EQ(m_decoder.Asked().size(), 3u) << "nothing is made ahead any more";
}
