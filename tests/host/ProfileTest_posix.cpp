#include "tests/host/ProfileFixture.h"

#include "com/WholeFile.h"

#include <gmock/gmock.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
mode_t ModeOf(const fs::path &file)
{
    struct stat status = {};
    ::stat(file.c_str(), &status);
    return status.st_mode & 07777;
}

std::string RefusalOf(const fs::path &folder)
{
    try
    {
        const Profile profile(folder);
        return "(taken)";
    }
    catch (const ProfileError &error)
    {
        return error.what();
    }
}
} // namespace

TEST_F(ProfileTest, IsForTheOwnersEyesAlone)
{
    m_store.Load();
    EXPECT_EQ(m_store.Store(AccountOf(TEXT("a"))), StoreOutcome::Stored);
    EXPECT_EQ(ModeOf(m_profile.Folder()), 0700u);
    EXPECT_EQ(ModeOf(m_profile.InitDataFile()), 0600u);
}

TEST_F(ProfileTest, WhatOthersMayWriteIsRefused)
{
    m_folder.Write("profile/init-data.bin", AccountOf(TEXT("planted")));
    m_folder.Write("profile/registry.reg", "planted");
    for (const fs::path &path : {m_profile.Folder(), m_profile.InitDataFile(), m_profile.RegistryFile()})
    {
        const fs::perms before = fs::status(path).permissions();
        EXPECT_NO_THROW(Profile{m_profile.Folder()});
        for (const fs::perms others : {fs::perms::group_write, fs::perms::others_write})
        {
            fs::permissions(path, before | others);
            EXPECT_THAT(RefusalOf(m_profile.Folder()), AllOf(HasSubstr(path), HasSubstr("other users")));
        }
        fs::permissions(path, before);
        if (::geteuid() == 0)
        {
            constexpr uid_t Nobody = 65534;
            ASSERT_EQ(::chown(path.c_str(), Nobody, Nobody), 0);
            EXPECT_THAT(RefusalOf(m_profile.Folder()), AllOf(HasSubstr(path), HasSubstr("belongs to nobody")));
            ASSERT_EQ(::chown(path.c_str(), 0, 0), 0);
        }
    }
}

TEST_F(ProfileTest, APipeInThePlaceOfAFileHangsNobody)
{
    ASSERT_EQ(::mkfifo(m_profile.InitDataFile().c_str(), 0600), 0);
    EXPECT_TRUE(TryToRead(m_profile.InitDataFile()));
    EXPECT_THROW(m_store.Load(), ProfileError);
}

TEST_F(ProfileTest, ALinkToTheAccountStaysOne)
{
    m_folder.Write("account", AccountOf(TEXT("old")));
    fs::create_symlink(m_folder.Path() / "account", m_profile.InitDataFile());
    m_store.Load();
    EXPECT_EQ(m_store.Store(AccountOf(TEXT("new"))), StoreOutcome::Stored);
    EXPECT_TRUE(fs::is_symlink(m_profile.InitDataFile()));
    EXPECT_EQ(ParseInitDataFile(m_folder.Read("account")), AccountOf(TEXT("new")));
}

TEST_F(ProfileTest, AFullDiskLosesNothing)
{
    m_store.Load();
    m_store.Store(AccountOf(TEXT("old")));
    const pid_t child = ::fork();
    if (child == 0)
    {
        // The limit on the size of files stands for the full disk: writes fail half way.
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {20, 20};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        try
        {
            m_store.Store(AccountOf(TEXT("something longer")));
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

TEST(ProfileFolder, FollowsTheBaseDirectories)
{
    ::setenv("HOME", "/home/x", 1);
    ::setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(Profile::DefaultFolder(), "/data/halvora");
    ::setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(Profile::DefaultFolder(), "/home/x/.local/share/halvora");
}
