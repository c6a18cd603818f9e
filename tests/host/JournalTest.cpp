#include "host/Journal.h"

#include "tests/host/ProfileFixture.h"

#include "database/Database.h"
#include "host/FileDigest.h"
#include "host/RunJournal.h"

#include <gmock/gmock.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{
const JournalAccount Ada = {"https://www.flickr.com/photos/ada/", "digest of a token"};

class JournalTest : public ProfileTest
{
protected:
    FileState Look(const fs::path &file) const
    {
        FileState state = LookAtFile(file).value_or(FileState());
        state.sha256 = DigestOfFile(file);
        return state;
    }

    // Enters the file as published under that id.
    void Publish(Journal &journal, const fs::path &file, const std::string &photo = "1") const
    {
        journal.Settle(journal.Begin(Ada, Look(file)), JournalOutcome::Published, photo, "");
    }

    // What becomes of a file that was published as "1" in the account of Ada.
    std::string Found(const JournalAccount &account, const fs::path &file) const
    {
        const auto entry = Journal(m_profile).Find(account, file);
        return !entry ? "none"
               : entry->outcome == JournalOutcome::Unknown
                   ? "unknown"
                   : entry->file.path.filename().string() + " " + entry->photo;
    }

    void Spoil(size_t from, const std::string &bytes) const
    {
        std::fstream file(m_profile.JournalFile(), std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(from));
        file << bytes;
    }
};
} // namespace

TEST_F(JournalTest, KnowsAFileByItsPlaceOrItsBytes)
{
    const fs::path file = m_folder.Write("one.jpg", "bytes");
    {
        Journal journal(m_profile);
        EXPECT_FALSE(journal.Find(Ada, file));
        Publish(journal, file, "1");
    }
    const auto elsewhere = Ada.token;
    EXPECT_EQ(Found(Ada, file), "one.jpg 1");
    EXPECT_EQ(Found({"", Ada.token}, file), "one.jpg 1") << "the address isn't known";
    EXPECT_EQ(Found({Ada.photosUrl, "another token"}, file), "one.jpg 1") << "authorized anew";
    EXPECT_EQ(Found({"https://www.flickr.com/photos/bob/", "another token"}, file), "none");
    EXPECT_EQ(Found({"", "another token"}, file), "none");
    EXPECT_EQ(Found(Ada, m_folder.Write("copy.jpg", "bytes")), "one.jpg 1");
    EXPECT_EQ(Found(Ada, m_folder.Write("other.jpg", "BYTES")), "none");
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::hours(1));
    EXPECT_EQ(Found(Ada, file), "one.jpg 1") << "touched";
    EXPECT_EQ(Found(Ada, m_folder.Write("one.jpg", "retouched")), "none");
    EXPECT_EQ(Found(Ada, m_folder.Path() / "missing.jpg"), "none");
}

TEST_F(JournalTest, PrefersWhatIsKnown)
{
    const fs::path file = m_folder.Write("one.jpg", "bytes");
    Journal journal(m_profile);
    const auto first = journal.Begin(Ada, Look(file));
    EXPECT_EQ(Found(Ada, file), "unknown");
    Publish(journal, file, "2");
    EXPECT_EQ(Found(Ada, file), "one.jpg 2");
    journal.Begin(Ada, Look(file)); // again, and broken off
    EXPECT_EQ(Found(Ada, file), "one.jpg 2");
    journal.Forget(first);
    const auto entries = journal.Entries();
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[1].photo, "2") << "newest first";
    EXPECT_EQ(entries[1].Page(), "https://www.flickr.com/photos/ada/2/");
    EXPECT_EQ(entries[0].Page(), "");
    EXPECT_EQ(JournalEntry{.photo = "3"}.Page(), "https://www.flickr.com/photo.gne?id=3");
    EXPECT_THAT(journal.Entries(m_folder.Write("copy.jpg", "bytes")), SizeIs(2));
    EXPECT_THAT(journal.Entries(m_folder.Write("other.jpg", "other")), IsEmpty());
}

TEST_F(JournalTest, EntriesGetTheAddressOfTheAccountOnceItIsKnown)
{
    const fs::path file = m_folder.Write("one.jpg", "bytes");
    Journal journal(m_profile);
    journal.Settle(journal.Begin({"", Ada.token}, Look(file)), JournalOutcome::Published, "1", "");
    journal.Recognize(Ada);
    EXPECT_EQ(Found({Ada.photosUrl, "another token"}, file), "one.jpg 1");
}

TEST_F(JournalTest, WaitsForAnotherProcessThatWrites)
{
    const fs::path file = m_folder.Write("one.jpg", "bytes");
    Journal journal(m_profile);
    Database other(m_profile.JournalFile());
    other.Run("BEGIN IMMEDIATE");
    std::thread end([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        other.Run("COMMIT");
    });
    Publish(journal, file);
    end.join();
    EXPECT_EQ(Found(Ada, file), "one.jpg 1");
}

TEST_F(JournalTest, ADamagedOneIsSetAsideAndReadAsFarAsItGoes)
{
    const struct
    {
        const char *what;
        size_t from;
        std::string bytes;
        size_t least; // entries that are saved
    } cases[] = {
        {"no database", 0, std::string(200, 'x'), 0},
        {"a page in the middle", 20 * 4096, std::string(4096, 'x'), 1},
    };
    for (const auto &one : cases)
    {
        SCOPED_TRACE(one.what);
        fs::remove(m_profile.JournalFile());
        {
            Journal journal(m_profile);
            for (int i = 0; i < 500; ++i)
            {
                Publish(journal, m_folder.Write("one.jpg", std::to_string(i)));
            }
        }
        Spoil(one.from, one.bytes);
        Journal journal(m_profile);
        EXPECT_THAT(journal.TakeNotices(), ElementsAre(HasSubstr("kept as journal.db.damaged-")));
        EXPECT_GE(journal.Entries().size(), one.least);
        const fs::path next = m_folder.Write("next.jpg", "next");
        Publish(journal, next, "7");
        EXPECT_EQ(Found(Ada, next), "next.jpg 7");
    }
}

namespace
{
class RunJournalTest : public JournalTest
{
protected:
    // Three items of which the second has two files.
    ItemCollection Items() const
    {
        ItemCollection collection;
        for (const char *name : {"a", "b", "c"})
        {
            m_folder.Write(name + std::string(".jpg"), name);
            collection.items.push_back({m_folder.Path() / name, {"jpg"}});
        }
        m_folder.Write("b.tif", "tif");
        collection.items[1].extensions.insert(collection.items[1].extensions.begin(), "tif");
        return collection;
    }

    std::string Outcomes(Journal &journal) const
    {
        std::string text;
        for (const JournalEntry &entry : journal.Entries())
        {
            constexpr char letters[] = "UPH";
            text += entry.file.path.filename().string() + " " + letters[static_cast<size_t>(entry.outcome)] +
                    entry.photo + entry.ticket + "; ";
        }
        return text;
    }

    RunRecord m_record{Items()};
    Journal m_journal{m_profile};
    std::vector<std::string> m_told;
    RunJournal m_run{&m_journal, Ada, m_record, [this](const std::string &words) { m_told.push_back(words); }};

    RunJournalTest()
    {
        m_record.WatchBy([this](size_t item, bool isOver) { m_run.ItemChanged(item, isOver); });
    }
    void Begin(size_t item, const char *file)
    {
        m_record.ItemBegins(item);
        m_run.FileBegins(item, m_folder.Path() / file);
    }
};
} // namespace

TEST_F(RunJournalTest, EntersEachFileBeforeAndAfter)
{
    Begin(0, "a.jpg");
    EXPECT_EQ(Outcomes(m_journal), "a.jpg U; ");
    m_record.NoteIds({"11", ""});
    EXPECT_EQ(Outcomes(m_journal), "a.jpg P11; ") << "at once";
    Begin(1, "b.jpg");
    m_run.FileBegins(1, m_folder.Path() / "b.jpg"); // the plug-in tries again
    m_record.NoteIds({"", "t-1"});
    Begin(2, "c.jpg");
    m_record.NoteEntry(3, "an encoder's complaint, without an end");
    EXPECT_EQ(Outcomes(m_journal), "c.jpg U; b.jpg Ht-1; a.jpg P11; ");
    m_record.NoteEntry(3, "Could not publish \"c\" (Error code: 0x80004005) Flickr Status = 5: no");
    EXPECT_EQ(Outcomes(m_journal), "b.jpg Ht-1; a.jpg P11; ") << "what failed isn't there";
    m_record.RunEnds();
    m_run.RunEnds();
    EXPECT_EQ(Outcomes(m_journal), "b.jpg Ht-1; a.jpg P11; ");
    EXPECT_THAT(m_told, IsEmpty());
}

TEST_F(RunJournalTest, WithoutAnObserverTheLogDecides)
{
    Begin(0, "a.jpg");
    Begin(1, "b.jpg");
    m_record.NoteEntry(
        3, "Could not publish \"b\" (Error code: 0x80072ee2) the picture may or may not have arrived.");
    m_record.ItemBegins(2); // of which the plug-in reads nothing
    m_record.RunEnds();
    EXPECT_EQ(Outcomes(m_journal), "c.jpg P; b.jpg U; a.jpg P; ");
}

TEST_F(RunJournalTest, WhatCannotBeWrittenIsWrittenLaterOrTold)
{
    const fs::path file = m_profile.JournalFile();
    Database other(file);
    for (const bool recovers : {true, false})
    {
        m_told.clear();
        // As a full disk does, this makes every change of the table fail.
        other.Run("CREATE TRIGGER full BEFORE INSERT ON uploads BEGIN SELECT RAISE(ABORT, 'disk full'); END");
        Begin(0, "a.jpg");
        m_record.NoteIds({"5", ""});
        Begin(1, "b.jpg");
        m_record.NoteIds({"6", ""});
        m_record.RunEnds();
        EXPECT_THAT(m_told, ElementsAre(HasSubstr("disk full")));
        if (recovers)
        {
            other.Run("DROP TRIGGER full");
            m_run.RunEnds();
            EXPECT_EQ(Outcomes(m_journal), "b.jpg P6; a.jpg P5; ");
        }
        else
        {
            m_run.RunEnds();
            EXPECT_THAT(m_told, ElementsAre(HasSubstr("disk full"), HasSubstr("a.jpg 5"), HasSubstr("b.jpg 6")));
        }
        m_record.TryAgain(0);
        m_record.TryAgain(1);
    }
}
