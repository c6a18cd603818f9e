#include "tests/host/ProfileFixture.h"

#include "com/WholeFile.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST_F(ProfileTest, StoresWhatChanged)
{
    m_store.Load();
    EXPECT_EQ(m_store.Content(), "");
    EXPECT_EQ(m_store.Store(AccountOf(TEXT("a"))), StoreOutcome::Stored);
    EXPECT_EQ(Kept(), AccountOf(TEXT("a")));
    EXPECT_EQ(m_store.Store(AccountOf(TEXT("a"))), StoreOutcome::Unchanged);
    InitDataStore next(m_profile);
    next.Load();
    EXPECT_EQ(next.Content(), AccountOf(TEXT("a")));
}

TEST_F(ProfileTest, WhatACrashLeftBehindIsOverwritten)
{
    m_folder.Write("profile/init-data.bin.new", "half of something much longer than what follows it");
    m_store.Load();
    EXPECT_EQ(m_store.Store(AccountOf(TEXT("new"))), StoreOutcome::Stored);
    EXPECT_EQ(Kept(), AccountOf(TEXT("new")));
    EXPECT_FALSE(fs::exists(m_folder.Path() / "profile" / "init-data.bin.new"));
}

TEST_F(ProfileTest, OneHolderOfTheLockWaitsForTheOther)
{
    std::atomic<bool> released = false;
    bool waited = false;
    auto first = std::make_unique<FileLock>(m_profile.LockFile());
    std::thread second([&] {
        const FileLock lock(m_profile.LockFile());
        waited = released;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    released = true;
    first.reset();
    second.join();
    EXPECT_TRUE(waited);
}

TEST_F(ProfileTest, AFolderThatCanNotBeMadeEndsInWords)
{
    m_folder.Write("file", "x");
    try
    {
        Profile profile(m_folder.Path() / "file" / "profile");
        FAIL();
    }
    catch (const ProfileError &error)
    {
        EXPECT_THAT(error.what(), HasSubstr((fs::path("file") / "profile").string()));
        EXPECT_THAT(error.what(), HasSubstr("--profile"));
    }
}

TEST_F(ProfileTest, AReplacementThatIsGivenUpLeavesTheOldContent)
{
    m_folder.Write("profile/init-data.bin", AccountOf(TEXT("old")));
    {
        FileReplacement replacement(m_profile.InitDataFile(), "x");
        EXPECT_EQ(Kept(), AccountOf(TEXT("old")));
    }
    EXPECT_EQ(Kept(), AccountOf(TEXT("old")));
    EXPECT_FALSE(fs::exists(m_folder.Path() / "profile" / "init-data.bin.new"));
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
    EXPECT_EQ(second.Store(AccountOf(TEXT("second"))), StoreOutcome::Stored);
    EXPECT_EQ(first.Store(AccountOf(TEXT("first"))), StoreOutcome::KeptNewer);
    EXPECT_EQ(Kept(), AccountOf(TEXT("second")));
    first.Overwrite(AccountOf(TEXT("ordered")));
    EXPECT_EQ(Kept(), AccountOf(TEXT("ordered")));
}
