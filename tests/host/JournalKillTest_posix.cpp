// The journal under processes that are killed. Only natively: under Wine killed processes keep others from ending.
#include "tests/host/ProfileFixture.h"

#include "host/Journal.h"

#include <gmock/gmock.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

namespace
{
// Another process that enters the file again and again, until it is killed with its object.
class Writer
{
public:
    Writer(const Profile &profile, const std::filesystem::path &file) : m_process(::fork())
    {
        if (m_process == 0)
        {
            Journal journal(profile);
            const FileState state = LookAtFile(file).value_or(FileState());
            for (int i = 1; i < 1000000; ++i)
            {
                const auto entry =
                    journal.Begin({"https://www.flickr.com/photos/ada/", "digest of a token"}, state);
                journal.Settle(entry, JournalOutcome::Published, std::to_string(i), "");
            }
            ::_exit(0);
        }
    }
    ~Writer()
    {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

private:
    const pid_t m_process;
};
} // namespace

using JournalKillTest = ProfileTest;

// Nothing that was entered is lost, and what wasn't settled is unknown.
TEST_F(JournalKillTest, EveryEntrySurvives)
{
    const auto file = m_folder.Write("one.jpg", "bytes");
    std::ptrdiff_t before = 0;
    for (int round = 0; round < 20; ++round)
    {
        {
            const Writer one(m_profile, file), two(m_profile, file);
            std::this_thread::sleep_for(std::chrono::milliseconds(150 + round * 17 % 100));
        }
        Journal journal(m_profile);
        ASSERT_THAT(journal.TakeNotices(), testing::IsEmpty());
        const auto entries = journal.Entries();
        EXPECT_LE(std::ranges::count(entries, JournalOutcome::Unknown, &JournalEntry::outcome), 2 * (round + 1));
        ASSERT_GE(std::ssize(entries), before);
        before = std::ssize(entries);
        for (const JournalEntry &entry : entries)
        {
            ASSERT_EQ(entry.photo.empty(), entry.outcome == JournalOutcome::Unknown);
        }
    }
    EXPECT_GT(before, 100);
}
