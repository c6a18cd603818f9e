#include "account/WebClientFactory.h"

#include "account/AccountRecord.h"
#include "account/ApplicationCredentials.h"
#include "com/ModuleLocks.h"
#include "core/VersionBlock.h"
#include "tests/doubles/FakeWebComponents.h"

#include <gtest/gtest.h>

namespace
{
AccountRecord WithTokens(const WCHAR *token, const WCHAR *secret)
{
    AccountRecord account;
    account.OAuthToken = BstrOwner(token);
    account.OAuthTokenSecret = BstrOwner(secret);
    return account;
}

WideText Plain(const SecuredString &record)
{
    const WideText text = OpenSecuredString(record);
    CloseSecuredString(record);
    return text;
}
} // namespace

TEST(WebClientFactory, SetsUpAClientOfItsOwnForEachUse)
{
    FakeWebComponents web;
    const auto client = CreateWebClient(WithTokens(TEXT("t"), TEXT("s")), VersionBlock::OfThisModule());
    const auto other = CreateWebClient(AccountRecord(), VersionBlock());
    ASSERT_TRUE(client && other);
    EXPECT_NE(client.Get(), other.Get());
    EXPECT_EQ(web.Operations(), (std::vector<std::string>{"Create IOAuthWebClient", "SetService", "SetAccessToken",
                                                          "Create IOAuthWebClient", "SetService"}));
    const std::vector<WideText> service = {TEXT("Halvora/1.96.0.401"),
                                           TEXT("https://api.flickr.com/services/rest"),
                                           TEXT("HMAC-SHA1"),
                                           Plain(ApplicationKey.Head),
                                           Plain(ApplicationSecret.Head),
                                           TEXT("http://www.flickr.com/services/oauth/request_token"),
                                           TEXT("http://www.flickr.com/services/oauth/authorize"),
                                           TEXT("http://www.flickr.com/services/oauth/access_token"),
                                           TEXT("http://authorization.halvora.example/flickr/authorization/"),
                                           TEXT("0")};
    EXPECT_EQ(web.Calls()[1].Arguments, service);
    EXPECT_EQ(web.Calls()[2].Arguments, (std::vector<WideText>{TEXT("t"), TEXT("s")}));
    EXPECT_EQ(web.Calls()[4].Arguments[0], TEXT("Halvora/0.0.0.0"));
}

TEST(WebClientFactory, HalfATokenPairIsNone)
{
    FakeWebComponents web;
    EXPECT_TRUE(CreateWebClient(WithTokens(TEXT("t"), TEXT("")), VersionBlock()));
    EXPECT_TRUE(CreateWebClient(WithTokens(TEXT(""), TEXT("s")), VersionBlock()));
    EXPECT_TRUE(web.CallsOf("SetAccessToken").empty());
}

TEST(WebClientFactory, AnyFailureGivesNoClientAndKeepsNothing)
{
    const long before = ModuleLocks::Read();
    for (const char *operation : {"Create IOAuthWebClient", "SetService", "SetAccessToken"})
    {
        FakeWebComponents web;
        const long objects = ModuleLocks::Read();
        web.FailOperation(operation, E_ACCESSDENIED);
        EXPECT_FALSE(CreateWebClient(WithTokens(TEXT("t"), TEXT("s")), VersionBlock())) << operation;
        EXPECT_EQ(ModuleLocks::Read(), objects) << operation;
    }
    EXPECT_EQ(ModuleLocks::Read(), before);
    EXPECT_FALSE(CreateWebClient(AccountRecord(), VersionBlock())) << "the components aren't there";
}
