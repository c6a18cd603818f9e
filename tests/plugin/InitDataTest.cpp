#include "plugin/InitDataStream.h"

#include "account/AccountRecord.h"
#include "com/Hresult.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/MemoryStream.h"

#include <gmock/gmock.h>

namespace
{
using namespace std::literals;
const std::string None(4, '\0');

HRESULT Read(MemoryStream *stream, AccountRecord &account)
{
    return AtBoundary([&] {
        ReadInitData(stream, account);
        return S_OK;
    });
}

HRESULT Write(MemoryStream *stream, const AccountRecord &account)
{
    return AtBoundary([&] {
        WriteInitData(stream, account);
        return S_OK;
    });
}

AccountRecord SomeAccount()
{
    AccountRecord account;
    account.OAuthToken = BstrOwner(TEXT("ab"));
    account.OAuthTokenSecret = BstrOwner(TEXT(""));
    account.FullName = BstrOwner(WideView(TEXT("\u00E9\0x"), 3));
    account.AccountType = BstrOwner(TEXT("Pro"));
    account.MaxFileSize = 0x0102030405060708;
    return account;
}

const std::string SomeBytes = "\1"s + "\6\0\0\0a\0b\0\0\0"s + "\2\0\0\0\0\0"s + None + "\4\0\0\0\xE9\0\0\0"s +
                              None + "\10\0\0\0P\0r\0o\0\0\0"s + "\x08\x07\x06\x05\x04\x03\x02\x01"s;
} // namespace

TEST(InitData, IsWrittenByteForByteOverWhatWasThere)
{
    const auto stream = MemoryStream::Make(std::string(500, 'x'));
    stream->Position = 77;
    EXPECT_EQ(Write(stream.Get(), SomeAccount()), S_OK);
    EXPECT_EQ(stream->Content, SomeBytes);
    // In this order, for the sake of a stream that can't be cut behind its position; nothing is committed.
    const auto calls = stream->Calls.Lines();
    ASSERT_GT(calls.size(), 2u);
    EXPECT_EQ(calls[0] + ", " + calls[1], "Seek, SetSize 0");
    EXPECT_THAT(calls, testing::Not(testing::Contains("Commit")));
    EXPECT_EQ(Write(stream.Get(), AccountRecord()), S_OK);
    EXPECT_EQ(stream->Content, "\1" + std::string(32, '\0'));
}

TEST(InitData, ComesBackAsItWas)
{
    AccountRecord account;
    const auto stream = MemoryStream::Make(SomeBytes);
    EXPECT_EQ(Read(stream.Get(), account), S_OK);
    EXPECT_EQ(Narrow(account.OAuthToken.View()), "ab");
    EXPECT_NE(account.OAuthTokenSecret.Get(), nullptr);
    EXPECT_TRUE(account.OAuthTokenSecret.IsEmpty());
    EXPECT_EQ(account.UserName.Get(), nullptr);
    EXPECT_EQ(Narrow(account.FullName.View()), "\xC3\xA9");
    EXPECT_EQ(Narrow(account.AccountType.View()), "Pro");
    EXPECT_EQ(account.MaxFileSize, 0x0102030405060708);
}

TEST(InitData, WithoutAPositiveMarkerLeavesTheTextsAlone)
{
    for (const std::string &content : {""s, "\0rest"s, "\x80rest"s, "\xFFrest"s})
    {
        AccountRecord account = SomeAccount();
        const auto stream = MemoryStream::Make(content);
        EXPECT_EQ(Read(stream.Get(), account), S_OK);
        EXPECT_EQ(account.MaxFileSize, 0);
        EXPECT_EQ(Narrow(account.OAuthToken.View()), "ab");
        EXPECT_LE(stream->Position, 1u);
    }
    AccountRecord account;
    const std::string highest = "\x7F" + std::string(6 * 4, '\0') + "\5\0\0\0\0\0\0\0"s;
    EXPECT_EQ(Read(MemoryStream::Make(highest).Get(), account), S_OK);
    EXPECT_EQ(account.MaxFileSize, 5);
}

TEST(InitData, RefusesEachMalformedShape)
{
    const std::string head = "\1"s + "\4\0\0\0o\0\0\0"s;
    const struct
    {
        std::string second;
        HRESULT result;
    } cases[] = {
        {"", E_FAIL},
        {"\2\0\0"s, E_FAIL},
        {"\1\0\0\0xx"s, E_FAIL},
        {"\1\0\x10\0"s + std::string(0x100001, 'x'), E_ACCESSDENIED},
        {"\xFF\xFF\xFF\xFF"s, E_ACCESSDENIED},
        {"\6\0\0\0a\0b"s, E_FAIL},
        {"\6\0\0\0a\0b\0"s, E_FAIL},
        {"\6\0\0\0a\0b\0\0"s, E_FAIL},
        {"\6\0\0\0a\0b\0c\0"s, E_FAIL},
    };
    for (const auto &c : cases)
    {
        AccountRecord account = SomeAccount();
        const auto stream = MemoryStream::Make(head + c.second);
        EXPECT_EQ(Read(stream.Get(), account), c.result) << testing::PrintToString(c.second.substr(0, 12));
        EXPECT_EQ(Narrow(account.OAuthToken.View()), "o") << "what was read stays";
        EXPECT_EQ(account.OAuthTokenSecret.Get(), nullptr);
        EXPECT_EQ(Narrow(account.AccountType.View()), "Pro") << "what comes later isn't touched";
        EXPECT_EQ(stream->Position, head.size());
    }
}

TEST(InitData, TakesAStringOfTheLargestSize)
{
    std::string content = "\1\0\0\x10\0"s;
    content.append(0x100000 - 2, 'a').append(2, '\0').append(5 * 4 + 8, '\0');
    AccountRecord account;
    EXPECT_EQ(Read(MemoryStream::Make(content).Get(), account), S_OK);
    EXPECT_EQ(account.OAuthToken.View().size(), 0x80000u - 1);
}

TEST(InitData, NeedsItsLastEightBytes)
{
    AccountRecord account;
    const std::string content = "\1" + std::string(6 * 4, '\0') + "\1\2\3\4\5\6\7";
    EXPECT_EQ(Read(MemoryStream::Make(content).Get(), account), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_EQ(account.MaxFileSize, 0);
}

TEST(InitData, GivesTheFailureOfAnyCallOfTheStream)
{
    const AccountRecord account = SomeAccount();
    const auto whole = MemoryStream::Make();
    ASSERT_EQ(Write(whole.Get(), account), S_OK);
    const size_t writes = whole->Calls.Lines().size();
    for (size_t call = 1; call <= writes; ++call)
    {
        const auto stream = MemoryStream::Make();
        stream->Calls.FailCall(call, STG_E_MEDIUMFULL);
        EXPECT_EQ(Write(stream.Get(), account), STG_E_MEDIUMFULL) << call;
        EXPECT_EQ(stream->Calls.Lines().size(), call) << "nothing goes on after a failure";
        EXPECT_TRUE(SomeBytes.starts_with(stream->Content)) << call;
    }
    for (size_t room = 0; room < SomeBytes.size(); ++room)
    {
        const auto stream = MemoryStream::Make();
        stream->Room = room;
        EXPECT_EQ(Write(stream.Get(), account), STG_E_MEDIUMFULL) << room;
    }

    const auto full = MemoryStream::Make(SomeBytes);
    AccountRecord read;
    ASSERT_EQ(Read(full.Get(), read), S_OK);
    const size_t reads = full->Calls.Lines().size();
    for (size_t call = 1; call <= reads; ++call)
    {
        const auto stream = MemoryStream::Make(SomeBytes);
        stream->Calls.FailCall(call, STG_E_READFAULT);
        const bool isSeek = full->Calls.Operations()[call - 1] == "Seek";
        const HRESULT expected = isSeek          ? S_OK
                                 : call == reads ? HRESULT_FROM_WIN32(ERROR_INVALID_DATA)
                                                 : STG_E_READFAULT;
        EXPECT_EQ(Read(stream.Get(), read), expected) << call << " " << full->Calls.Operations()[call - 1];
    }
}
