#include "host/PicturesAhead.h"

#include "tests/host/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <wincodec.h>

#include <chrono>
#include <memory>

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

    void Forget()
    {
        const std::lock_guard guard(m_lock);
        m_asked.clear();
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
    // Items "a", "b" and so on of one file each.
    void AddTifs(int count)
    {
        for (int i = 0; i < count; ++i)
        {
            Add(std::string(1, static_cast<char>('a' + i)), {"tif"});
        }
    }

    void Add(const std::string &stem, std::vector<std::string> extensions)
    {
        for (const std::string &extension : extensions)
        {
            m_folder.Write(stem + "." + extension, "x");
        }
        m_items.push_back({m_folder.Path() / stem, std::move(extensions)});
    }

    fs::path File(const char *name) const { return m_folder.Path() / name; }

    // Takes the first item's picture, and waits until so many are begun.
    std::unique_ptr<PicturesAhead> Begin(size_t begun, UINT longEdge = 100, unsigned threads = 2)
    {
        auto ahead = std::make_unique<PicturesAhead>(
            m_items,
            [this](const fs::path &file, UINT edge, const std::atomic<bool> *stop) {
                return m_decoder(file, edge, stop);
            },
            threads);
        ahead->Take(File("a.tif"), longEdge);
        m_decoder.WaitFor(begun);
        return ahead;
    }

    TemporaryFolder m_folder;
    std::vector<PictureItem> m_items;
    RecordingDecoder m_decoder;
};
} // namespace

TEST_F(PicturesAheadTest, MakesTheNextOnesAndEachOnce)
{
    AddTifs(6);
    for (const unsigned threads : {1u, 2u, 8u})
    {
        SCOPED_TRACE(threads);
        m_decoder.Forget();
        const auto ahead = Begin(1, 100, threads);
        for (size_t i = 1; i < m_items.size(); ++i)
        {
            // One more than there are threads, unless the items end.
            const size_t begun = std::min(i + 1 + threads, m_items.size());
            EXPECT_EQ(m_decoder.WaitFor(begun).size(), begun);
            ahead->ItemBegins(i);
            EXPECT_EQ(ahead->Take(m_items[i].File(0), 100)->width, 100u);
        }
        EXPECT_THAT(m_decoder.Asked(), testing::UnorderedElementsAre("a.tif", "b.tif ahead", "c.tif ahead",
                                                                     "d.tif ahead", "e.tif ahead", "f.tif ahead"));
        EXPECT_EQ(ahead->Hits(), 5u);
    }
}

TEST_F(PicturesAheadTest, WhatWasMadeForAnotherRequestIsNoResult)
{
    AddTifs(2);
    const struct
    {
        const char *what;
        UINT longEdge;
        bool isChanged;
        size_t hits;
    } cases[] = {{"the same", 100, false, 1}, {"another size", 50, false, 0}, {"another file", 100, true, 0}};
    for (const auto &c : cases)
    {
        SCOPED_TRACE(c.what);
        m_decoder.Forget();
        const auto ahead = Begin(2);
        ahead->ItemBegins(1);
        if (c.isChanged)
        {
            m_folder.Write("b.tif", "changed");
        }
        EXPECT_EQ(ahead->Take(File("b.tif"), c.longEdge)->width, c.longEdge);
        EXPECT_EQ(ahead->Hits(), c.hits);
        ahead->Take(File("b.tif"), c.longEdge);
        EXPECT_EQ(ahead->Hits(), c.hits) << "a second request for one file";
        EXPECT_EQ(m_decoder.Asked().back(), "b.tif");
    }
}

TEST_F(PicturesAheadTest, AFailureAheadIsToldWhenItsPictureIsAskedFor)
{
    AddTifs(2);
    m_decoder.m_broken = "b.tif";
    const auto ahead = Begin(2);
    ahead->ItemBegins(1);
    EXPECT_THROW(ahead->Take(File("b.tif"), 100), DecodingError);
}

TEST_F(PicturesAheadTest, LargePicturesAreFewer)
{
    AddTifs(5);
    const std::pair<size_t, size_t> cases[] = {{40, 2}, {30, 3}, {20, 4}}; // megabytes, pictures made
    for (const auto &[megabytes, made] : cases)
    {
        SCOPED_TRACE(megabytes);
        m_decoder.Forget();
        m_decoder.m_bytes = megabytes << 20;
        const auto ahead = Begin(made, 0);
        std::this_thread::sleep_for(50ms);
        EXPECT_EQ(m_decoder.Asked().size(), made);
    }
}

TEST_F(PicturesAheadTest, GuessesByExtension)
{
    Add("a", {"jpg", "tif"});
    Add("b", {"gif"});
    Add("c", {"jpg"});
    Add("d", {"webp", "TIF"});
    Add("e", {"gif"});
    const auto ahead = Begin(2, 100, 4);
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(m_decoder.Asked(), testing::UnorderedElementsAre("a.tif", "d.TIF ahead"));
    // A file of another extension only if the plug-in has wanted the picture of such a one the last time.
    ahead->ItemBegins(1);
    ahead->Take(File("b.gif"), 50);
    ahead->Take(File("a.tif"), 40);
    EXPECT_THAT(m_decoder.WaitFor(7), testing::Contains("e.gif ahead").Times(2));
    ahead->NoteUndecoded(File("b.gif"));
    ahead->ItemBegins(2);
    ahead->Take(File("c.jpg"), 30);
    ahead->Take(File("a.tif"), 20);
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(m_decoder.Asked(), testing::Contains("e.gif ahead").Times(2));
}

TEST_F(PicturesAheadTest, StoppingEndsWhatIsBeingMade)
{
    AddTifs(4);
    m_decoder.Hold(true);
    const auto ahead = Begin(3);
    ahead->Stop();
    ahead->Stop();
    ahead->Take(File("a.tif"), 100);
    EXPECT_EQ(m_decoder.Asked().size(), 4u) << "nothing is made ahead any more";
}
