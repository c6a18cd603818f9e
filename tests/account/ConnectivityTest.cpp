#include "account/Connectivity.h"

#include "account/AccountRecord.h"
#include "core/VersionBlock.h"
#include "tests/doubles/FakeWebComponents.h"

#include <gtest/gtest.h>

namespace
{
constexpr const WCHAR *UsedUp = TEXT("<rsp stat='ok'><user ispro='0'><filesize maxbytes='9'/>"
                                     "<bandwidth maxbytes='10' usedbytes='10'/></user></rsp>");
constexpr const WCHAR *SomeLeft = TEXT("<rsp stat='ok'><user ispro='0'><filesize maxbytes='9'/>"
                                       "<bandwidth maxbytes='10' usedbytes='9'/></user></rsp>");
constexpr const WCHAR *Pro = TEXT("<rsp stat='ok'><user ispro='1'><filesize maxbytes='9'/></user></rsp>");
constexpr const WCHAR *Refused = TEXT("<rsp stat='fail'><err code='98' msg='Invalid auth token'/></rsp>");
} // namespace

TEST(Connectivity, IsAnsweredByThePairAloneOrByTheService)
{
    const struct
    {
        const WCHAR *token;
        const WCHAR *secret;
        bool withCheck;
        const WCHAR *reply; // null: nothing may be asked
        HRESULT result;
    } cases[] = {
        {TEXT(""), TEXT(""), false, nullptr, S_FALSE},  {TEXT("t"), TEXT(""), false, nullptr, S_FALSE},
        {TEXT("t"), TEXT(""), true, nullptr, S_FALSE},  {TEXT("t"), TEXT("s"), false, nullptr, S_OK},
        {TEXT("t"), TEXT("s"), true, Refused, S_FALSE}, {TEXT("t"), TEXT("s"), true, UsedUp, S_FALSE},
        {TEXT("t"), TEXT("s"), true, SomeLeft, S_OK},   {TEXT("t"), TEXT("s"), true, Pro, S_OK},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(&c - cases);
        FakeWebComponents web;
        AccountRecord account;
        account.OAuthToken = BstrOwner(c.token);
        account.OAuthTokenSecret = BstrOwner(c.secret);
        account.AccountRefreshed = true; // and nothing left, which the cheap form doesn't look at
        if (c.reply != nullptr)
        {
            web.Answer(c.reply);
        }
        EXPECT_EQ(AnswerCanPublish(account, VersionBlock(), c.withCheck), c.result);
        EXPECT_EQ(web.CallsOf("RestRequest").size(), c.reply ? 1u : 0u);
    }
}

TEST(Connectivity, AFailedRequestIsANoWhateverIsKnownOfTheAllowance)
{
    FakeWebComponents web;
    AccountRecord account;
    account.OAuthToken = BstrOwner(TEXT("t"));
    account.OAuthTokenSecret = BstrOwner(TEXT("s"));
    account.UploadLeftThisMonth = 500;
    web.AnswerWith(HRESULT_FROM_WIN32(12007), nullptr);
    EXPECT_EQ(AnswerCanPublish(account, VersionBlock(), true), S_FALSE);
    EXPECT_TRUE(account.AccountRefreshed);
    EXPECT_EQ(account.UploadLeftThisMonth, 500);
}
