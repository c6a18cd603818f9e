#include "host/InitData.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace
{
AccountData SomeAccount()
{
    AccountData account;
    account.token = TEXT("tok");
    account.tokenSecret = TEXT("s");
    account.fullName = TEXT("");
    account.accountType = TEXT("Pro");
    account.maxFileSize = 0x0102030405060708;
    return account;
}
} // namespace

TEST(InitData, HasTheBytesThatThePluginReads)
{
    EXPECT_EQ(ComposeInitData(SomeAccount()), "\x01"
                                              "\x08\0\0\0t\0o\0k\0\0\0"
                                              "\x04\0\0\0s\0\0\0"
                                              "\0\0\0\0"
                                              "\x02\0\0\0\0\0"
                                              "\0\0\0\0"
                                              "\x08\0\0\0P\0r\0o\0\0\0"
                                              "\x08\x07\x06\x05\x04\x03\x02\x01"s);
    EXPECT_EQ(ComposeInitData(AccountData()).size(), 33u);
}

TEST(InitData, ComesBackAsItWas)
{
    const auto account = ParseInitData(ComposeInitData(SomeAccount()));
    ASSERT_TRUE(account);
    EXPECT_EQ(account->token, TEXT("tok"));
    EXPECT_EQ(account->userName, std::nullopt);
    EXPECT_EQ(account->fullName, TEXT(""));
    EXPECT_EQ(account->maxFileSize, 0x0102030405060708);
    EXPECT_TRUE(account->IsAuthorized());
    ASSERT_TRUE(ParseInitData(""));
    EXPECT_FALSE(ParseInitData("")->IsAuthorized());
}

TEST(InitData, TheFileAroundItTellsEveryDamage)
{
    const std::string content = ComposeInitData(SomeAccount());
    const std::string file = ComposeInitDataFile(content);
    EXPECT_EQ(ParseInitDataFile(file), content);
    EXPECT_EQ(ParseInitDataFile(content), content) << "as earlier versions wrote it";
    EXPECT_EQ(ParseInitDataFile(ComposeInitDataFile("")), "");
    for (size_t length = 0; length < file.size(); ++length)
    {
        EXPECT_FALSE(ParseInitDataFile(file.substr(0, length))) << length;
    }
    for (size_t bit = 0; bit < file.size() * 8; ++bit)
    {
        std::string changed = file;
        changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ (1 << bit % 8));
        EXPECT_FALSE(ParseInitDataFile(changed)) << bit;
    }
}

TEST(InitData, DamageIsNeverTakenForAnAccount)
{
    const std::string whole = ComposeInitData(SomeAccount());
    for (size_t length = 1; length < whole.size(); ++length)
    {
        EXPECT_FALSE(ParseInitData(whole.substr(0, length))) << length;
    }
    EXPECT_FALSE(ParseInitData(whole + "x"));
    EXPECT_FALSE(ParseInitData("\0"s + whole.substr(1)));
    EXPECT_FALSE(ParseInitData("\x02"s + whole.substr(1)));
    std::string unclosed = whole;
    unclosed[11] = 'x';
    EXPECT_FALSE(ParseInitData(unclosed));
    EXPECT_FALSE(ParseInitData("\x01\xFF\xFF\xFF\x7F"s + std::string(100, 'x')));
    EXPECT_FALSE(ParseInitData("\x01\x03\0\0\0abc"s + std::string(100, '\0')));
}
