#include "account/AccountQueries.h"

#include "account/AccountRecord.h"
#include "com/ModuleLocks.h"
#include "core/VersionBlock.h"
#include "tests/doubles/FakeWebComponents.h"
#include "tests/doubles/MemoryStream.h"
#include "tests/doubles/ReplyDocuments.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{
constexpr const WCHAR *TokenReply =
    TEXT("<rsp stat='ok'><oauth><user username='jdoe' fullname='Jane Doe'/></oauth></rsp>");
constexpr const WCHAR *PhotosReply =
    TEXT("<rsp stat='ok'><user url='https://www.flickr.com/photos/jdoe/'/></rsp>");
constexpr const WCHAR *ProReply =
    TEXT("<rsp stat='ok'><user ispro='1'><filesize maxbytes='209715200'/></user></rsp>");
constexpr const WCHAR *Refusal = TEXT("<rsp stat='fail'><err code='98' msg='Invalid auth token'/></rsp>");

// As an earlier run may have left it.
AccountRecord EarlierAccount()
{
    AccountRecord account;
    account.OAuthToken = BstrOwner(TEXT("token"));
    account.OAuthTokenSecret = BstrOwner(TEXT("secret"));
    account.UserName = BstrOwner(TEXT("old user"));
    account.FullName = BstrOwner(TEXT("old name"));
    account.PhotosUrl = BstrOwner(TEXT("old url"));
    account.AccountType = BstrOwner(TEXT("Pro"));
    account.MaxFileSize = 1000;
    account.UploadLeftThisMonth = 500;
    return account;
}

// A reply of flickr.people.getUploadStatus; null leaves an attribute out, with its element.
WideText Status(WideView stat, const WCHAR *pro, const WCHAR *size, const WCHAR *most, const WCHAR *used)
{
    const auto with = [](WideView before, const WCHAR *value, WideView after) {
        return value ? WideText(before) + value + WideText(after) : WideText();
    };
    return with(TEXT("<rsp stat='"), stat.data(), TEXT("'><user")) + with(TEXT(" ispro='"), pro, TEXT("'")) +
           TEXT(">") + with(TEXT("<filesize maxbytes='"), size, TEXT("'/>")) +
           with(TEXT("<bandwidth maxbytes='"), most, TEXT("'")) + with(TEXT(" usedbytes='"), used, TEXT("'/>")) +
           TEXT("</user></rsp>");
}
} // namespace

TEST(QueryUploadStatus, TakesLevelAndLimitsFromTheReply)
{
    constexpr INT64 unlimited = UnlimitedUpload;
    const WCHAR *const none = nullptr;
    const WCHAR *const huge = TEXT("9223372036854775807");
    const struct
    {
        WideText reply;
        HRESULT result;
        const WCHAR *type;
        INT64 maxFileSize;
        INT64 left;
    } cases[] = {
        {Status(TEXT("ok"), TEXT("1"), TEXT("209715200"), none, none), S_OK, TEXT("Pro"), 209715200, unlimited},
        {Status(TEXT("OK"), TEXT("1 year"), TEXT("7"), none, none), S_OK, TEXT("Pro"), 7, unlimited},
        {Status(TEXT("ok"), TEXT("1"), none, none, none), E_FAIL, TEXT("Pro"), 1000, unlimited},
        {Status(TEXT("ok"), TEXT("0"), TEXT("5"), TEXT("300"), TEXT("100")), S_OK, TEXT("Basic"), 5, 200},
        {Status(TEXT("ok"), TEXT(""), TEXT("5"), TEXT("0"), TEXT("100")), S_OK, TEXT("Basic"), 5, unlimited},
        {Status(TEXT("ok"), TEXT("0"), TEXT("5"), TEXT("100"), TEXT("100")), S_OK, TEXT("Basic"), 5, 0},
        {Status(TEXT("ok"), TEXT("0"), TEXT("5"), TEXT("100"), TEXT("101")), S_OK, TEXT("Basic"), 5, 0},
        {Status(TEXT("ok"), TEXT("0"), TEXT(""), huge, TEXT("-1")), S_OK, TEXT("Basic"), 1000, unlimited},
        {Status(TEXT("ok"), TEXT("0"), TEXT("5"), none, none), E_FAIL, TEXT("Basic"), 5, 500},
        {TEXT("<rsp stat='ok'><user ispro='0'><filesize maxbytes='99999999999999999999'/>")
             TEXT("<bandwidth maxbytes='300'/></user></rsp>"),
         E_FAIL, TEXT("Basic"), INT64_MAX, 500},
        {Status(TEXT("ok"), TEXT("0"), none, TEXT("300"), TEXT("100")), E_FAIL, TEXT("Basic"), 1000, 500},
        {Status(TEXT("ok"), none, TEXT("5"), none, none), E_FAIL, TEXT("Basic"), 1000, 500},
        {Status(TEXT("fail"), TEXT("1"), none, none, none), E_FAIL, TEXT("Basic"), 1000, 500},
        {Status(TEXT(""), none, none, none, none), E_FAIL, TEXT("Basic"), 1000, 500},
        {TEXT("<rsp/>"), E_FAIL, TEXT("Basic"), 1000, 500},
        {Refusal, E_FAIL, TEXT("Basic"), 1000, 500},
    };
    for (const auto &[reply, result, type, maxFileSize, left] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(reply));
        FakeWebComponents web;
        web.Answer(reply);
        AccountRecord account = EarlierAccount();
        EXPECT_EQ(QueryUploadStatus(account, VersionBlock()), result);
        EXPECT_EQ(account.AccountType.View(), type);
        EXPECT_EQ(account.MaxFileSize, maxFileSize);
        EXPECT_EQ(account.UploadLeftThisMonth, left);
        EXPECT_TRUE(account.AccountRefreshed);
        EXPECT_TRUE(account.IsAuthorized());
        EXPECT_THAT(web.LinesOf("RestRequest "),
                    ElementsAre("(null) POST (null) method=flickr.people.getUploadStatus 0"));
    }
}

TEST(QueryUploadStatus, ARequestThatFailsIsAMissingDocument)
{
    for (const char *operation : {"RestRequest", "Create IRequestParameters", "Add"})
    {
        FakeWebComponents web;
        web.FailOperation(operation, HRESULT_FROM_WIN32(12002));
        AccountRecord account = EarlierAccount();
        EXPECT_EQ(QueryUploadStatus(account, VersionBlock()), E_POINTER) << operation;
        EXPECT_EQ(account.AccountType.View(), TEXT("Basic"));
        EXPECT_EQ(account.UploadLeftThisMonth, 500);
    }
    FakeWebComponents web;
    web.AnswerWith(E_ABORT, MakeDocument(ProReply));
    AccountRecord account = EarlierAccount();
    EXPECT_EQ(QueryUploadStatus(account, VersionBlock()), E_POINTER)
        << "a failing request's document isn't looked at";
    EXPECT_EQ(account.AccountType.View(), TEXT("Basic"));
}

TEST(QueryUploadStatus, WithoutClientOrDocumentNothingButTheTryIsNoted)
{
    FakeWebComponents web;
    for (int i = 0; i < 3; ++i)
    {
        AccountRecord account = EarlierAccount();
        i == 0   ? web.FailOperation("SetService", E_FAIL)
        : i == 1 ? web.AnswerWith(S_OK, nullptr)
                 : web.AnswerWith(S_OK, MemoryStream::Make());
        EXPECT_EQ(QueryUploadStatus(account, VersionBlock()), E_UNEXPECTED);
        EXPECT_TRUE(account.AccountRefreshed);
        EXPECT_EQ(account.AccountType.View(), TEXT("Pro"));
    }
}

TEST(RefreshAccount, ReadsNamesAddressAndLimitsInThisOrder)
{
    const long before = ModuleLocks::Read();
    {
        FakeWebComponents web;
        web.Answer(TokenReply);
        web.Answer(PhotosReply);
        web.Answer(ProReply);
        AccountRecord account = EarlierAccount();
        EXPECT_EQ(RefreshAccount(account, VersionBlock()), S_OK);
        EXPECT_EQ(account.UserName.View(), TEXT("jdoe"));
        EXPECT_EQ(account.FullName.View(), TEXT("Jane Doe"));
        EXPECT_EQ(account.PhotosUrl.View(), TEXT("https://www.flickr.com/photos/jdoe/"));
        EXPECT_EQ(account.AccountType.View(), TEXT("Pro"));
        EXPECT_THAT(web.LinesOf("RestRequest "),
                    ElementsAre("(null) POST (null) method=flickr.auth.oauth.checkToken 0",
                                "(null) POST (null) method=flickr.urls.getUserPhotos 0",
                                "(null) POST (null) method=flickr.people.getUploadStatus 0"));
        EXPECT_EQ(web.CallsOf("Create IOAuthWebClient").size(), 2u) << "one for the names, one for the limits";
    }
    EXPECT_EQ(ModuleLocks::Read(), before);
}

TEST(RefreshAccount, ItsResultIsThatOfTheLimits)
{
    FakeWebComponents web;
    AccountRecord account = EarlierAccount();
    for (const auto &[limits, result] : {std::pair(Refusal, E_FAIL), std::pair(ProReply, S_OK)})
    {
        web.Answer(Refusal);
        web.Answer(Refusal);
        web.Answer(limits);
        EXPECT_EQ(RefreshAccount(account, VersionBlock()), result);
        EXPECT_EQ(account.UserName.View(), TEXT("old user"));
        EXPECT_EQ(account.PhotosUrl.View(), TEXT("old url"));
        EXPECT_TRUE(account.IsAuthorized());
    }
}

TEST(RefreshAccount, AReadThatMissesEmptiesItsField)
{
    FakeWebComponents web;
    web.Answer(TEXT("<rsp stat='ok'><oauth><user fullname='Jane Doe'/></oauth></rsp>"));
    web.FailOperation("RestRequest", E_ABORT, 2);
    web.Answer(ProReply);
    AccountRecord account = EarlierAccount();
    EXPECT_EQ(RefreshAccount(account, VersionBlock()), S_OK) << "the failed address isn't reported";
    EXPECT_TRUE(account.UserName.IsEmpty());
    EXPECT_EQ(account.FullName.View(), TEXT("old name")) << "not read after a miss";
    EXPECT_TRUE(account.PhotosUrl.IsEmpty()) << "looked for in the first reply";
    EXPECT_EQ(account.AccountType.View(), TEXT("Pro"));
}

TEST(RefreshAccount, StopsWhereNothingCanBeTold)
{
    FakeWebComponents web;
    AccountRecord account = EarlierAccount();
    web.FailOperation("Create IOAuthWebClient", E_FAIL);
    EXPECT_EQ(RefreshAccount(account, VersionBlock()), E_UNEXPECTED);

    web.FailOperation("RestRequest", HRESULT_FROM_WIN32(12007));
    EXPECT_EQ(RefreshAccount(account, VersionBlock()), HRESULT_FROM_WIN32(12007));

    web.AnswerWith(S_OK, nullptr);
    EXPECT_EQ(RefreshAccount(account, VersionBlock()), E_UNEXPECTED);
    EXPECT_EQ(account.UserName.View(), TEXT("old user"));
    EXPECT_FALSE(account.AccountRefreshed);

    web.Answer(TokenReply);
    web.AnswerWith(S_OK, nullptr);
    EXPECT_EQ(RefreshAccount(account, VersionBlock()), E_UNEXPECTED);
    EXPECT_EQ(account.UserName.View(), TEXT("jdoe"));
    EXPECT_EQ(account.PhotosUrl.View(), TEXT("old url"));
    EXPECT_FALSE(account.AccountRefreshed) << "the limits weren't asked for";
}
