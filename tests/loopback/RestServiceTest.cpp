#include "LoopbackClient.h"

#include <gmock/gmock.h>

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

TEST(RestService, TellsTheAccountAsItWasSet)
{
    RunningService service;
    auto client = service.Client();
    EXPECT_EQ(client.Admin("account", {{"level", "pro"}, {"full_name", "Ægir & <Söhne>"}}).status, 200);
    const Answer token = client.Rest("flickr.auth.oauth.checkToken");
    EXPECT_EQ(token.status, 200);
    EXPECT_THAT(token.contentType, StartsWith("text/xml"));
    EXPECT_THAT(token.body, AllOf(StartsWith("\n<?xml"), HasSubstr("<perms>write</perms>"),
                                  HasSubstr("username=\"halvora-demo\" fullname=\"Ægir &amp; &lt;Söhne&gt;\"")));
    EXPECT_THAT(client.Rest("flickr.urls.getUserPhotos").body,
                HasSubstr("url=\"https://www.flickr.com/photos/halvora-demo/\""));
    EXPECT_THAT(client.Rest("flickr.people.getUploadStatus").body,
                AllOf(HasSubstr("ispro=\"1\""), HasSubstr("<filesize max=\"209715200\" maxbytes=\"209715200\""),
                      HasSubstr("unlimited=\"1\"")));
    // All requests used one connection.
    EXPECT_EQ(JsonValue(client.Admin("statistics").body, "secure_connections"), "1");
}

TEST(RestService, RefusesWhatItDoesNotKnow)
{
    RunningService service;
    auto client = service.Client();
    EXPECT_THAT(client.Rest("flickr.no.such").body,
                AllOf(HasSubstr("stat=\"fail\""), HasSubstr("code=\"112\""), HasSubstr("flickr.no.such")));
    EXPECT_THAT(client.Rest("flickr.test.login", {}, {{"format", "json"}}).body, HasSubstr("code=\"111\""));
    Signature tokenless;
    tokenless.token = tokenless.tokenSecret = "";
    EXPECT_THAT(client.Rest("flickr.test.login", tokenless).body, HasSubstr("code=\"99\""));
    EXPECT_THAT(client.Get("https://api.flickr.com/services/rest?method=flickr.test.login").body,
                HasSubstr("code=\"100\""));
    EXPECT_THAT(client.Get("http://api.flickr.com/services/rest?method=flickr.test.login").body,
                HasSubstr("code=\"95\""));
    EXPECT_EQ(client.Get("https://www.flickr.com/services/rest").status, 404);
    // The certificate covers only the known names, and the service refuses any other Host (DNS rebinding).
    EXPECT_NE(client.Get("https://other.example/").result, 0);
    EXPECT_EQ(client.Get("http://other.example/").status, 421);
}

TEST(RestService, TokensComeAndGo)
{
    RunningService service;
    auto client = service.Client();
    Signature mine;
    mine.token = "mine";
    mine.tokenSecret = "s&e=c r+e%t";
    EXPECT_EQ(client.Rest("flickr.test.login", mine).status, 401);
    EXPECT_EQ(
        client.Admin("tokens", {{"token", "mine"}, {"secret", mine.tokenSecret}, {"permission", "read"}}).status,
        200);
    EXPECT_THAT(client.Rest("flickr.test.login", mine).body, HasSubstr("stat=\"ok\""));
    EXPECT_THAT(client.Upload({}, {}, mine).body, HasSubstr("code=\"99\""));
    client.Admin("tokens/remove", {{"token", "mine"}});
    EXPECT_EQ(client.Rest("flickr.test.login", mine).body, "oauth_problem=token_rejected");
    EXPECT_EQ(client.Admin("account", {{"level", "gold"}}).status, 400);
    EXPECT_EQ(client.Admin("account", {{"colour", "red"}}).status, 400);
}
