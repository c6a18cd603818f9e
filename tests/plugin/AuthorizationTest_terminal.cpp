// The authorization as a user at a terminal meets it.
#include "account/AuthorizationDialogs.h"
#include "account/ProxyDiscovery.h"
#include "plugin/FlickrPublisher.h"
#include "tests/doubles/PublishFixture.h"
#include "tests/platform/PseudoTerminal.h"

#include <gmock/gmock.h>

#include <thread>

using testing::HasSubstr;

namespace
{
// The verb, at a service that can't be reached.
std::string AuthorizeInVain()
{
    PublishFixture fixture;
    ComPtr<IHalvoraPublishingPlugin> plugin;
    CFlickrPublisher::CreateInstance(nullptr, __uuidof(IHalvoraPublishingPlugin), plugin.PutVoid());
    EXPECT_EQ(plugin->Initialize(fixture.Host.Get(), 0, fixture.Stream.Get(), 0), S_OK);
    fixture.Web.FailOperation("GetAuthorizationUrl", E_ACCESSDENIED);
    WideText verb = TEXT("AUTHORIZE");
    WideText parameters;
    return std::to_string(plugin->Configure(fixture.Windows.Bar(), verb.data(), parameters.data()));
}
} // namespace

TEST(AuthorizationAtATerminal, BeginsWithTheUsersConsent)
{
    TerminalRun refused(AuthorizeInVain);
    ASSERT_TRUE(refused.Answer("2\n"));
    EXPECT_EQ(refused.Result(), std::to_string(S_FALSE));

    TerminalRun given(AuthorizeInVain);
    ASSERT_TRUE(given.Answer("\n"));
    ASSERT_TRUE(given.Answer("\n"));
    EXPECT_THAT(given.Screen(), HasSubstr("Halvora needs your permission to publish images to Flickr."));
    EXPECT_THAT(given.Screen(), HasSubstr("Authorization Error"));
    EXPECT_THAT(given.Screen(), HasSubstr("0x80070005. Access was denied."));
    EXPECT_THAT(given.Screen(), HasSubstr("   > Authorize\r\n")) << "the choice stays on the screen";
    EXPECT_EQ(given.Result(), std::to_string(E_ACCESSDENIED));
}

TEST(AuthorizationAtATerminal, OpensThePageAndWaitsForTheUser)
{
    const TemporaryFolder folder;
    const auto program =
        folder.Write("xdg-open", "#!/bin/sh\necho \"$1\" > \"$0.new\"; mv \"$0.new\" \"$0.opened\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    TerminalRun run([&] {
        setenv("PATH", (folder.Path().string() + ":" + std::getenv("PATH")).c_str(), 1);
        AuthorizationDialogs dialogs;
        dialogs.PrepareCompletion();
        dialogs.OpenPage(nullptr, TEXT("https://page.example/?a=b"));
        return std::to_string(dialogs.AskCompletion(nullptr));
    });
    ASSERT_TRUE(run.Answer("\n"));
    EXPECT_THAT(run.Screen(), HasSubstr("Return to this window once you've authorized Halvora on Flickr."));
    EXPECT_EQ(run.Result(), "1");
    for (int i = 0; i < 500 && !std::filesystem::exists(folder.Path() / "xdg-open.opened"); ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_EQ(folder.Read("xdg-open.opened"), "https://page.example/?a=b\n");
}

TEST(AuthorizationAtATerminal, TakesTheUsersProxy)
{
    const auto discovered = [](const char *proxy) {
        return ResultOf([proxy] {
            setenv("https_proxy", proxy, 1);
            setenv("no_proxy", "other.example", 1);
            ProxySetting setting;
            const DWORD error = DiscoverSystemProxy(TEXT("https://page.example/"), setting);
            unsetenv("https_proxy");
            unsetenv("no_proxy");
            return std::to_string(error) + " " + std::to_string(setting.AccessType) + " " +
                   (setting.Proxy ? Narrow(setting.Proxy.Get()) : "") + " " +
                   (setting.Bypass ? Narrow(setting.Bypass.Get()) : "");
        });
    };
    EXPECT_EQ(discovered("http://proxy.example:3128"), "0 3 http://proxy.example:3128 other.example");
    EXPECT_EQ(discovered(""), "0 1  other.example");
}
