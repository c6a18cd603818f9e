#include "account/AccountQueries.h"

#include "account/AccountRecord.h"
#include "com/ModuleLocks.h"
#include "core/VersionBlock.h"
#include "tests/doubles/FakeWebComponents.h"
#include "tests/doubles/MemoryStream.h"
#include "tests/doubles/ReplyDocuments.h"

#include <gtest/gtest.h>

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

std::vector<WideText> MethodsAsked(const FakeWebComponents &web)
{
    std::vector<WideText> methods;
    for (const WebCall &call : web.CallsOf("RestRequest"))
    {
        EXPECT_EQ(call.Arguments[0], TEXT("(null)"));
        EXPECT_EQ(call.Arguments[1], TEXT("POST"));
        EXPECT_EQ(call.Arguments[2], TEXT("(null)"));
        EXPECT_EQ(call.Arguments[4], TEXT("0"));
        methods.push_back(call.Arguments[3]);
    }
    return methods;
}
} // namespace

TEST(QueryUploadStatus, TakesLevelAndLimitsFromTheReply)
{
    constexpr INT64 unlimited = UnlimitedUpload;
    const struct
    {
        const WCHAR *reply;
        HRESULT result;
        const WCHAR *type;
        INT64 maxFileSize;
        INT64 left;
    } cases[] = {
        {ProReply, S_OK, TEXT("Pro"), 209715200, unlimited},
        {TEXT("<rsp stat='OK'><user ispro='1 year'><filesize maxbytes='7'/></user></rsp>"), S_OK, TEXT("Pro"), 7,
         unlimited},
        {TEXT("<rsp stat='ok'><user ispro='1'/></rsp>"), E_FAIL, TEXT("Pro"), 1000, unlimited},
        {TEXT("<rsp stat='ok'><user ispro='0'><filesize maxbytes='5'/><bandwidth maxbytes='300' "
              "usedbytes='100'/></user></rsp>"),
         S_OK, TEXT("Basic"), 5, 200},
        {TEXT("<rsp stat='ok'><user ispro=''><filesize maxbytes='5'/><bandwidth maxbytes='0' "
              "usedbytes='100'/></user></rsp>"),
         S_OK, TEXT("Basic"), 5, unlimited},
        {TEXT("<rsp stat='ok'><user ispro='0'><filesize maxbytes='5'/><bandwidth maxbytes='100' "
              "usedbytes='100'/></user></rsp>"),
         S_OK, TEXT("Basic"), 5, 0},
        {TEXT("<rsp stat='ok'><user ispro='0'><filesize maxbytes='5'/><bandwidth maxbytes='100' "
              "usedbytes='101'/></user></rsp>"),
         S_OK, TEXT("Basic"), 5, 0},
        {TEXT("<rsp stat='ok'><user ispro='0'><filesize maxbytes=''/><bandwidth maxbytes='9223372036854775807' "
              "usedbytes='-1'/></user></rsp>"),
         S_OK, TEXT("Basic"), 1000, unlimited},
        {TEXT("<rsp stat='ok'><user ispro='0'><filesize maxbytes='5'/></user></rsp>"), E_FAIL, TEXT("Basic"), 5,
         500},
        {TEXT("<rsp stat='ok'><user ispro='0'><bandwidth maxbytes='300' usedbytes='100'/></user></rsp>"), E_FAIL,
         TEXT("Basic"), 1000, 500},
        {TEXT("<rsp stat='ok'><user><filesize maxbytes='5'/></user></rsp>"), E_FAIL, TEXT("Basic"), 1000, 500},
        {TEXT("<rsp stat='fail'><user ispro='1'/></rsp>"), E_FAIL, TEXT("Basic"), 1000, 500},
        {TEXT("<rsp stat=''/>"), E_FAIL, TEXT("Basic"), 1000, 500},
        {TEXT("<rsp/>"), E_FAIL, TEXT("Basic"), 1000, 500},
        {Refusal, E_FAIL, TEXT("Basic"), 1000, 500},
    };
    for (const auto &[reply, result, type, maxFileSize, left] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(WideText(reply)));
        FakeWebComponents web;
        web.Answer(reply);
        AccountRecord account = EarlierAccount();
        EXPECT_EQ(QueryUploadStatus(account, VersionBlock()), result);
        EXPECT_EQ(account.AccountType.View(), type);
        EXPECT_EQ(account.MaxFileSize, maxFileSize);
        EXPECT_EQ(account.UploadLeftThisMonth, left);
        EXPECT_TRUE(account.AccountRefreshed);
        EXPECT_TRUE(account.IsAuthorized());
        EXPECT_EQ(MethodsAsked(web), std::vector<WideText>{TEXT("method=flickr.people.getUploadStatus")});
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
        EXPECT_EQ(MethodsAsked(web), (std::vector<WideText>{TEXT("method=flickr.auth.oauth.checkToken"),
                                                            TEXT("method=flickr.urls.getUserPhotos"),
                                                            TEXT("method=flickr.people.getUploadStatus")}));
        EXPECT_EQ(web.CallsOf("Create IOAuthWebClient").size(), 2u) << "one for the names, one for the limits";
    }
    EXPECT_EQ(ModuleLocks::Read(), before);
}

TEST(RefreshAccount, ItsResultIsThatOfTheLimits)
{
    FakeWebComponents web;
    web.Answer(Refusal);
    web.Answer(Refusal);
    web.Answer(Refusal);
    AccountRecord account = EarlierAccount();
    EXPECT_EQ(RefreshAccount(account, VersionBlock()), E_FAIL);
    EXPECT_EQ(account.UserName.View(), TEXT("old user"));
    EXPECT_EQ(account.PhotosUrl.View(), TEXT("old url"));
    EXPECT_TRUE(account.IsAuthorized());

    web.Answer(Refusal);
    web.Answer(Refusal);
    web.Answer(ProReply);
    EXPECT_EQ(RefreshAccount(account, VersionBlock()), S_OK);
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
