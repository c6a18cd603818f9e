#include "tests/host/ProfileFixture.h"

#include "com/HandleOwner.h"

#include <gmock/gmock.h>

#include <functional>

using testing::HasSubstr;

namespace
{
std::string FailureOf(const std::function<void()> &deed)
{
    try
    {
        deed();
    }
    catch (const ProfileError &error)
    {
        return error.what();
    }
    return "(none)";
}
} // namespace

TEST_F(ProfileTest, AFileThatAnotherProgramHoldsIsToldInWordsAndKeepsItsContent)
{
    m_folder.Write("profile/init-data.bin", AccountOf(TEXT("old")));
    m_store.Load();
    {
        const FileOwner held(
            CreateFileW(m_profile.InitDataFile().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(held);
        EXPECT_THAT(FailureOf([&] { m_store.Load(); }), HasSubstr("can't be read"));
        EXPECT_THAT(FailureOf([&] { m_store.Store(AccountOf(TEXT("new"))); }), HasSubstr("still there"));
        EXPECT_THAT(FailureOf([&] { m_store.Overwrite(AccountOf(TEXT("new"))); }), HasSubstr("still there"));
    }
    EXPECT_EQ(Kept(), AccountOf(TEXT("old")));
    EXPECT_FALSE(std::filesystem::exists(m_profile.InitDataFile().native() + L".new"));
}

TEST(ProfileFolder, LiesAmongTheUsersOwnLocalData)
{
    const auto folder = Profile::DefaultFolder();
    EXPECT_TRUE(folder.is_absolute());
    EXPECT_EQ(folder.filename(), L"Halvora");
    const wchar_t *local = _wgetenv(L"LOCALAPPDATA");
    ASSERT_NE(local, nullptr);
    EXPECT_EQ(folder.parent_path(), local);
}
