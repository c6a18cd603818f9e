#include "account/WebClientFactory.h"

#include "account/AccountRecord.h"
#include "account/ApplicationCredentials.h"
#include "com/ModuleLocks.h"
#include "core/VersionBlock.h"
#include "tests/doubles/FakeWebComponents.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{
AccountRecord WithTokens(const WCHAR *token, const WCHAR *secret)
{
    AccountRecord account;
    account.OAuthToken = BstrOwner(token);
    account.OAuthTokenSecret = BstrOwner(secret);
    return account;
}

std::string Plain(const SecuredString &record)
{
    const std::string text = Narrow(OpenSecuredString(record));
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
    EXPECT_THAT(web.Operations(), ElementsAre("Create IOAuthWebClient", "SetService", "SetAccessToken",
                                              "Create IOAuthWebClient", "SetService"));
    EXPECT_THAT(web.CallsOf("SetService").at(0).Arguments,
                ElementsAre("Halvora/1.96.0.401", "https://api.flickr.com/services/rest", "HMAC-SHA1",
                            Plain(ApplicationKey.Head), Plain(ApplicationSecret.Head),
                            "http://www.flickr.com/services/oauth/request_token",
                            "http://www.flickr.com/services/oauth/authorize",
                            "http://www.flickr.com/services/oauth/access_token",
                            "http://authorization.halvora.example/flickr/authorization/", "0"));
    EXPECT_THAT(web.LinesOf("SetAccessToken "), ElementsAre("t s"));
    EXPECT_EQ(web.CallsOf("SetService").at(1).Arguments[0], "Halvora/0.0.0.0");
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
