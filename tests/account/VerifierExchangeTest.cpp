#include "account/VerifierExchange.h"

#include "com/ModuleLocks.h"
#include "tests/doubles/FakeXmlHttp.h"

#include <gtest/gtest.h>

namespace
{
const std::string Endpoint = "https://authorization.halvora.example/flickr/authorization";
constexpr const WCHAR *Page = TEXT("http://www.flickr.com/services/oauth/authorize?oauth_token=rt");
constexpr const WCHAR *Reply =
    TEXT("<TRNQVerifierExchange><Other/><Verifier>v-1</Verifier></TRNQVerifierExchange>");

DWORD NoProxyFound(const WCHAR *, ProxySetting &)
{
    return ERROR_WINHTTP_INTERNAL_ERROR;
}

} // namespace

TEST(VerifierUrl, HoldsTheRequestTokenOfThePage)
{
    const std::pair<const WCHAR *, const char *> cases[] = {
        {TEXT("http://h/a?oauth_token=rt"), "oauth_token=rt"},
        {TEXT("http://h/a?oauth_token=rt&perms=write"), "oauth_token=rt"},
        {TEXT("http://h/a?perms=write&oauth_token=rt"), "oauth_token=rt"},
        {TEXT("http://h/a?oauth_token=rt&a=1&b=2"), "oauth_token=rt&a=1"},
        {TEXT("http://h/a?oauth_token=rt&oauth_token=other&b=2"), "oauth_token=rt&oauth_token=other"},
        {TEXT("oauth_token="), "oauth_token="},
    };
    for (const auto &[page, query] : cases)
    {
        EXPECT_EQ(Narrow(VerifierUrl(page).View()), Endpoint + "/?" + query);
    }
    for (const WCHAR *const page :
         {TEXT(""), TEXT("http://h/a?OAuth_Token=rt"), TEXT("http://h/a?oauth_tokens=rt")})
    {
        EXPECT_THROW(VerifierUrl(page), HresultError) << Narrow(page);
    }
}

TEST(VerifierExchange, SendsOneRequestByTheProxyThatWasFound)
{
    const std::string url = "open GET " + Endpoint + "/?oauth_token=rt";
    const auto finds = [](DWORD error, const WCHAR *bypass) {
        return [error, bypass](const WCHAR *asked, ProxySetting &setting) {
            EXPECT_EQ(Narrow(asked), Endpoint) << "the token is no business of a proxy script";
            setting.AccessType = WINHTTP_ACCESS_TYPE_NO_PROXY;
            const WideView text(bypass);
            auto *copy = static_cast<WCHAR *>(GlobalAlloc(GPTR, (text.size() + 1) * sizeof(WCHAR)));
            text.copy(copy, text.size());
            setting.Bypass = GlobalTextOwner(copy);
            return error;
        };
    };
    const struct
    {
        ProxyDiscovery discovery;
        HRESULT serverCreation;
        std::vector<std::string> lines;
    } cases[] = {
        {NoProxyFound, S_OK, {"create server", url, "send", "read reply"}},
        {finds(ERROR_WINHTTP_TIMEOUT, TEXT("b")), S_OK, {"create server", url, "send", "read reply"}},
        {finds(0, TEXT("b")), S_OK, {"create server", url, "proxy 1 (null) b", "send", "read reply"}},
        {[](const WCHAR *, ProxySetting &) -> DWORD {
             ADD_FAILURE() << "no proxy is looked for that can't be set";
             return 0;
         },
         REGDB_E_CLASSNOTREG,
         {"create server", "create plain", url, "send", "read reply"}},
    };
    for (const auto &c : cases)
    {
        const long objects = ModuleLocks::Read();
        {
            CallRecord record;
            FakeXmlHttp http(record);
            record.FailOperation("create server", c.serverCreation);
            http.Answer(Reply);
            SecretBstr verifier;
            EXPECT_EQ(FetchVerifier(Page, c.discovery, verifier), S_OK);
            EXPECT_EQ(Narrow(verifier.View()), "v-1");
            EXPECT_EQ(record.Lines(), c.lines);
        }
        EXPECT_EQ(ModuleLocks::Read(), objects);
    }
}

TEST(SecretBstr, OverwritesWhatItHeld)
{
    SecretBstr secret({TEXT("a"), TEXT(""), TEXT("bc")});
    EXPECT_EQ(Narrow(secret.View()), "abc");
    EXPECT_EQ(secret.Fill().View(), WideView(TEXT("\0\0\0"), 3));
}
