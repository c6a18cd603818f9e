#include "tests/host/ProfileFixture.h"

#include "host/WholeFile.h"

#include <gmock/gmock.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testing::IsEmpty;

namespace
{
mode_t ModeOf(const fs::path &file)
{
    struct stat status = {};
    ::stat(file.c_str(), &status);
    return status.st_mode & 07777;
}
} // namespace

TEST_F(ProfileTest, IsForTheOwnersEyesAlone)
{
    InitDataStore store(m_profile);
    store.Load();
    EXPECT_EQ(store.Content(), "");
    EXPECT_EQ(store.Store(AccountOf(TEXT("a"))), StoreOutcome::Stored);
    EXPECT_EQ(Kept(), AccountOf(TEXT("a")));
    EXPECT_EQ(ModeOf(m_profile.Folder()), 0700u);
    EXPECT_EQ(ModeOf(m_profile.InitDataFile()), 0600u);
    EXPECT_EQ(store.Store(AccountOf(TEXT("a"))), StoreOutcome::Unchanged);
}

TEST_F(ProfileTest, ACrashBeforeTheRenameLeavesTheOldContentWhole)
{
    InitDataStore store(m_profile);
    store.Load();
    store.Store(AccountOf(TEXT("old")));
    const pid_t child = ::fork();
    if (child == 0)
    {
        FileReplacement replacement(m_profile.InitDataFile(), AccountOf(TEXT("half")));
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    ASSERT_TRUE(fs::exists(m_profile.InitDataFile().native() + ".new"));

    InitDataStore next(m_profile);
    next.Load();
    EXPECT_EQ(next.Content(), AccountOf(TEXT("old")));
    EXPECT_THAT(next.Notices(), IsEmpty());
    EXPECT_EQ(next.Store(AccountOf(TEXT("new"))), StoreOutcome::Stored);
    EXPECT_EQ(Kept(), AccountOf(TEXT("new")));
    EXPECT_FALSE(fs::exists(m_profile.InitDataFile().native() + ".new"));
}

TEST_F(ProfileTest, AFullDiskLosesNothing)
{
    InitDataStore store(m_profile);
    store.Load();
    store.Store(AccountOf(TEXT("old")));
    const pid_t child = ::fork();
    if (child == 0)
    {
        // The limit on the size of files stands for the full disk: writes fail half way.
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {20, 20};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        try
        {
            store.Store(AccountOf(TEXT("something longer")));
            ::_exit(1);
        }
        catch (const ProfileError &error)
        {
            ::_exit(std::string_view(error.what()).find("still there") != std::string_view::npos ? 0 : 2);
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(Kept(), AccountOf(TEXT("old")));
    EXPECT_FALSE(fs::exists(m_profile.InitDataFile().native() + ".new"));
}

TEST_F(ProfileTest, AReadOnlyFolderIsToldInWordsAndReadsStillWork)
{
    if (::geteuid() == 0)
    {
        GTEST_SKIP() << "nothing is read-only to root";
    }
    InitDataStore store(m_profile);
    store.Load();
    store.Store(AccountOf(TEXT("old")));
    fs::permissions(m_profile.Folder(), fs::perms::owner_read | fs::perms::owner_exec);
    store.Load();
    EXPECT_EQ(store.Content(), AccountOf(TEXT("old")));
    EXPECT_THROW(store.Store(AccountOf(TEXT("new"))), ProfileError);
    fs::permissions(m_profile.Folder(), fs::perms::owner_all);
    EXPECT_EQ(Kept(), AccountOf(TEXT("old")));
}

TEST(ProfileFolder, FollowsTheBaseDirectories)
{
    ::setenv("HOME", "/home/x", 1);
    ::setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(Profile::DefaultFolder(), "/data/halvora");
    ::setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(Profile::DefaultFolder(), "/home/x/.local/share/halvora");
}
