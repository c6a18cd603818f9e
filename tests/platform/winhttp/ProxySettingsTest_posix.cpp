// The proxy that the environment names, as discovery and uploads learn of it.
#include "platform/http/EnvironmentProxy.h"

#include <windows.h>
#include <winhttp.h>

#include <gmock/gmock.h>

#include <cstdlib>

namespace
{
void Clear()
{
    for (const char *name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTP_PROXY", "HTTPS_PROXY",
                             "ALL_PROXY", "NO_PROXY"})
    {
        unsetenv(name);
    }
}

std::u16string Take(WCHAR *text)
{
    const std::u16string copy = text ? text : u"(null)";
    GlobalFree(text);
    return copy;
}

TEST(ProxySettings, AreThoseOfTheEnvironment)
{
    const struct
    {
        std::vector<std::pair<const char *, const char *>> variables;
        const WCHAR *proxy, *bypass;
        const char *ofHttp; // the proxy of an http address
    } cases[] = {
        {{}, u"(null)", u"(null)", ""},
        {{{"https_proxy", "http://me:pass@s:1/"}, {"http_proxy", "p:2"}},
         u"http://me:pass@s:1/",
         u"(null)",
         "p:2"},
        {{{"https_proxy", "low:1"}, {"HTTPS_PROXY", "high:1"}, {"ALL_PROXY", "all:1"}},
         u"low:1",
         u"(null)",
         "all:1"},
        {{{"https_proxy", ""}, {"HTTPS_PROXY", "high:1"}, {"HTTP_PROXY", "visitor:1"}}, u"high:1", u"(null)", ""},
        {{{"all_proxy", "socks5://all:1"}, {"ALL_PROXY", "b:1"}}, u"socks5://all:1", u"(null)", "socks5://all:1"},
        {{{"no_proxy", ".a.example,b"}, {"NO_PROXY", "c"}}, u"(null)", u".a.example,b", ""},
        {{{"NO_PROXY", "*"}}, u"(null)", u"*", ""},
    };
    for (const auto &c : cases)
    {
        Clear();
        for (const auto &[name, value] : c.variables)
        {
            setenv(name, value, 1);
        }
        WINHTTP_CURRENT_USER_IE_PROXY_CONFIG config{TRUE, nullptr, nullptr, nullptr};
        EXPECT_TRUE(WinHttpGetIEProxyConfigForCurrentUser(&config));
        EXPECT_FALSE(config.fAutoDetect);
        EXPECT_EQ(nullptr, config.lpszAutoConfigUrl);
        EXPECT_EQ(c.proxy, Take(config.lpszProxy));
        EXPECT_EQ(c.bypass, Take(config.lpszProxyBypass));
        EXPECT_EQ(c.ofHttp, EnvironmentProxy("http://https.example").server);
        EXPECT_EQ(EnvironmentProxy("https:").server, EnvironmentProxy("HTTPS://a.example/").server);
        const std::string variable = EnvironmentProxy("https:").variable;
        EXPECT_EQ(EnvironmentProxy("https:").server, variable.empty() ? "" : getenv(variable.c_str())) << variable;
    }
    Clear();
}

TEST(ProxySettings, AreShownWithoutAPassword)
{
    for (const char *server : {"p:1", "http://p:1", "http://me:a@b/c@p:1/", "me:sesame@p:1"})
    {
        EXPECT_EQ("p:1", ShownProxy(server)) << server;
    }
}
} // namespace
