#include "host/Profile.h"

#include "tests/host/TemporaryFolder.h"

#include "host/InitData.h"
#include "host/WholeFile.h"

#include <gmock/gmock.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
std::string AccountOf(const WCHAR *token)
{
    AccountData account;
    account.token = token;
    account.tokenSecret = token;
    return ComposeInitData(account);
}

mode_t ModeOf(const fs::path &file)
{
    struct stat status = {};
    ::stat(file.c_str(), &status);
    return status.st_mode & 07777;
}

class ProfileTest : public testing::Test
{
protected:
    std::string Kept() const { return m_folder.Read("profile/init-data.bin"); }

    TemporaryFolder m_folder;
    Profile m_profile{m_folder.Path() / "profile"};
};
} // namespace

TEST_F(ProfileTest, IsForTheOwnersEyesAlone)
{
    InitDataStore store(m_profile);
    store.Load();
    EXPECT_EQ(store.Content(), "");
    EXPECT_EQ(store.Store(AccountOf(u"a")), StoreOutcome::Stored);
    EXPECT_EQ(Kept(), AccountOf(u"a"));
    EXPECT_EQ(ModeOf(m_profile.Folder()), 0700u);
    EXPECT_EQ(ModeOf(m_profile.InitDataFile()), 0600u);
    EXPECT_EQ(store.Store(AccountOf(u"a")), StoreOutcome::Unchanged);
}

TEST_F(ProfileTest, AFolderThatCanNotBeMadeIsToldInWords)
{
    m_folder.Write("file", "x");
    try
    {
        Profile profile(m_folder.Path() / "file" / "profile");
        FAIL();
    }
    catch (const ProfileError &error)
    {
        EXPECT_THAT(error.what(), HasSubstr("file/profile"));
        EXPECT_THAT(error.what(), HasSubstr("--profile"));
    }
}

TEST_F(ProfileTest, ACrashBeforeTheRenameLeavesTheOldContentWhole)
{
    InitDataStore store(m_profile);
    store.Load();
    store.Store(AccountOf(u"old"));
    const pid_t child = ::fork();
    if (child == 0)
    {
        FileReplacement replacement(m_profile.InitDataFile(), AccountOf(u"half"));
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    ASSERT_TRUE(fs::exists(m_profile.InitDataFile().native() + ".new"));

    InitDataStore next(m_profile);
    next.Load();
    EXPECT_EQ(next.Content(), AccountOf(u"old"));
    EXPECT_THAT(next.Notices(), IsEmpty());
    EXPECT_EQ(next.Store(AccountOf(u"new")), StoreOutcome::Stored);
    EXPECT_EQ(Kept(), AccountOf(u"new"));
    EXPECT_FALSE(fs::exists(m_profile.InitDataFile().native() + ".new"));
}

TEST_F(ProfileTest, AReplacementThatIsGivenUpLeavesNothing)
{
    {
        FileReplacement replacement(m_profile.InitDataFile(), "x");
    }
    EXPECT_TRUE(fs::is_empty(m_profile.Folder()));
}

TEST_F(ProfileTest, DamagedDataIsKeptAsideUnderNamesOfTheirOwn)
{
    for (const std::string damaged : {"garbage one", "\x01garbage two"})
    {
        m_folder.Write("profile/init-data.bin", damaged);
        InitDataStore store(m_profile);
        store.Load();
        EXPECT_EQ(store.Content(), "");
        ASSERT_EQ(store.Notices().size(), 1u);
        EXPECT_THAT(store.Notices()[0], HasSubstr("damaged"));
        EXPECT_FALSE(fs::exists(m_profile.InitDataFile()));
    }
    EXPECT_EQ(m_folder.Read("profile/init-data.bin.damaged-1"), "garbage one");
    EXPECT_EQ(m_folder.Read("profile/init-data.bin.damaged-2"), "\x01garbage two");
}

TEST_F(ProfileTest, WhatAnotherProcessStoredMeanwhileStays)
{
    InitDataStore first(m_profile);
    InitDataStore second(m_profile);
    first.Load();
    second.Load();
    EXPECT_EQ(second.Store(AccountOf(u"second")), StoreOutcome::Stored);
    EXPECT_EQ(first.Store(AccountOf(u"first")), StoreOutcome::KeptNewer);
    EXPECT_EQ(Kept(), AccountOf(u"second"));
    first.Overwrite(AccountOf(u"ordered"));
    EXPECT_EQ(Kept(), AccountOf(u"ordered"));
}

TEST_F(ProfileTest, AFullDiskLosesNothing)
{
    InitDataStore store(m_profile);
    store.Load();
    store.Store(AccountOf(u"old"));
    const pid_t child = ::fork();
    if (child == 0)
    {
        // The limit on the size of files stands for the full disk: writes fail half way.
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {20, 20};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        try
        {
            store.Store(AccountOf(u"something longer"));
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
    EXPECT_EQ(Kept(), AccountOf(u"old"));
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
    store.Store(AccountOf(u"old"));
    fs::permissions(m_profile.Folder(), fs::perms::owner_read | fs::perms::owner_exec);
    store.Load();
    EXPECT_EQ(store.Content(), AccountOf(u"old"));
    EXPECT_THROW(store.Store(AccountOf(u"new")), ProfileError);
    fs::permissions(m_profile.Folder(), fs::perms::owner_all);
    EXPECT_EQ(Kept(), AccountOf(u"old"));
}

TEST(ProfileFolder, FollowsTheBaseDirectories)
{
    ::setenv("HOME", "/home/x", 1);
    ::setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(Profile::DefaultFolder(), "/data/halvora");
    ::setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(Profile::DefaultFolder(), "/home/x/.local/share/halvora");
}
