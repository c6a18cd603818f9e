#include "account/ProxyDiscovery.h"

#include "com/BstrOwner.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/FakeXmlHttp.h"

#include <gtest/gtest.h>

#include <deque>

namespace
{
WCHAR *GlobalText(const WCHAR *text)
{
    if (text == nullptr)
    {
        return nullptr;
    }
    const WideView view(text);
    auto *copy = static_cast<WCHAR *>(GlobalAlloc(GMEM_FIXED, (view.size() + 1) * sizeof(WCHAR)));
    *std::copy(view.begin(), view.end(), copy) = 0;
    return copy;
}

struct Answer
{
    DWORD error = 0;
    const WCHAR *proxy = nullptr;
    const WCHAR *bypass = nullptr;
};

struct UserSettings
{
    DWORD error = 0;
    bool autoDetect = false;
    const WCHAR *script = nullptr;
    const WCHAR *proxy = nullptr;
    const WCHAR *bypass = nullptr;
};

// Answers by a script. Strings that it hands out and that nobody frees are leaks of the test program.
// Lines of the record: "detect URL", "script SCRIPT URL", each with " logon" behind it where that is on.
class ScriptedLookup final : public ProxyLookup
{
public:
    ScriptedLookup(const UserSettings &user, std::deque<Answer> answers)
        : m_user(user), m_answers(std::move(answers))
    {
    }

    DWORD ReadUserSettings(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG &settings) override
    {
        settings.fAutoDetect = m_user.autoDetect;
        settings.lpszAutoConfigUrl = GlobalText(m_user.script);
        settings.lpszProxy = GlobalText(m_user.proxy);
        settings.lpszProxyBypass = GlobalText(m_user.bypass);
        return m_user.error;
    }

    DWORD FindProxy(const WCHAR *url, WINHTTP_AUTOPROXY_OPTIONS &options, WINHTTP_PROXY_INFO &found) override
    {
        const bool isDetection = options.dwFlags == WINHTTP_AUTOPROXY_AUTO_DETECT;
        EXPECT_EQ(options.dwFlags, isDetection ? 1u : 2u);
        EXPECT_EQ(options.dwAutoDetectFlags, isDetection ? 3u : 0u);
        Record.Add((isDetection ? "detect " : "script " + Narrow(options.lpszAutoConfigUrl) + " ") + Narrow(url) +
                   (options.fAutoLogonIfChallenged ? " logon" : ""));
        if (m_answers.empty())
        {
            ADD_FAILURE() << "a lookup that nobody expected";
            return ERROR_INVALID_FUNCTION;
        }
        const Answer answer = m_answers.front();
        m_answers.pop_front();
        found.lpszProxy = GlobalText(answer.proxy);
        found.lpszProxyBypass = GlobalText(answer.bypass);
        return answer.error;
    }

    bool AllWereAsked() const { return m_answers.empty(); }

    CallRecord Record;

private:
    UserSettings m_user;
    std::deque<Answer> m_answers;
};

std::string Shown(const GlobalTextOwner &text)
{
    return text ? Narrow(text.Get()) : "(null)";
}

constexpr DWORD LoginFailure = 12015;
constexpr DWORD NotDetected = 12180;
constexpr DWORD OtherFailure = 12007;
} // namespace

TEST(ProxyDiscovery, TakesTheFirstWayThatWorks)
{
    const WCHAR *const found = TEXT("found:1");
    const WCHAR *const list = TEXT("list:2");
    const WCHAR *const local = TEXT("<local>");
    const WCHAR *const pac = TEXT("pac");
    const std::string detect = "detect u";
    const std::string script = "script pac u";
    const std::string logon = " logon";
    const char *const nothing = "1 (null) (null)";
    const struct
    {
        UserSettings user;
        std::deque<Answer> answers;
        std::vector<std::string> lines;
        DWORD error;
        const char *setting;
    } cases[] = {
        {{}, {}, {}, 0, "1 (null) (null)"},
        {{0, false, nullptr, list, local}, {}, {}, 0, "3 list:2 <local>"},
        {{0, false, nullptr, nullptr, local}, {}, {}, 0, "1 (null) <local>"},
        {{0, true, pac, list, local}, {{0, found}}, {detect}, 0, "3 found:1 (null)"},
        // A way that works and finds no proxy is an answer, too.
        {{0, true, pac, list, local}, {{0, nullptr}}, {detect}, 0, "1 (null) (null)"},
        {{0, true, pac, list, local},
         {{NotDetected}, {0, found, local}},
         {detect, script},
         0,
         "3 found:1 <local>"},
        {{0, false, pac, list, nullptr}, {{12167}}, {script}, 0, "3 list:2 (null)"},
        {{0, true, pac, list, local}, {{NotDetected}, {12166}}, {detect, script}, 0, "3 list:2 <local>"},
        // Asked for a login, the lookup gives one once, and that outcome stands.
        {{0, true, nullptr, list}, {{LoginFailure}, {0, found}}, {detect, detect + logon}, 0, "3 found:1 (null)"},
        {{0, true, pac, list},
         {{LoginFailure}, {LoginFailure}, {0, found}},
         {detect, detect + logon, script},
         0,
         "3 found:1 (null)"},
        {{0, false, pac, list}, {{LoginFailure}, {LoginFailure}}, {script, script + logon}, 0, "3 list:2 (null)"},
        {{0, true, pac, list}, {{LoginFailure}, {OtherFailure}}, {detect, detect + logon}, OtherFailure, nothing},
        // Strings of a failed lookup, or of failed settings, are freed and not used.
        {{0, true}, {{NotDetected, found, local}}, {detect}, 0, nothing},
        {{0, true, pac, list}, {{OtherFailure}}, {detect}, OtherFailure, nothing},
        {{0, false, pac, list}, {{OtherFailure}}, {script}, OtherFailure, nothing},
        {{2}, {{NotDetected}}, {detect}, 0, nothing},
        {{2}, {{0, found}}, {detect}, 0, "3 found:1 (null)"},
        {{5, true, pac, list}, {}, {}, 5, nothing},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(&c - cases);
        ScriptedLookup lookup(c.user, c.answers);
        ProxySetting setting;
        setting.Proxy = GlobalTextOwner(GlobalText(TEXT("old")));
        EXPECT_EQ(DiscoverProxy(TEXT("u"), setting, lookup), c.error);
        EXPECT_EQ(lookup.Record.Lines(), c.lines);
        EXPECT_TRUE(lookup.AllWereAsked());
        EXPECT_EQ(std::to_string(setting.AccessType) + " " + Shown(setting.Proxy) + " " + Shown(setting.Bypass),
                  c.setting);
    }
}

TEST(ProxyDiscovery, GoesOnAfterTheFailuresThatAllowItAlone)
{
    for (const DWORD error : {87u, 12002u, 12006u, 12017u, 12166u, 12167u, 12178u, 12180u})
    {
        ScriptedLookup lookup({0, true, nullptr, TEXT("list:2"), nullptr}, {{error}});
        ProxySetting setting;
        EXPECT_EQ(DiscoverProxy(TEXT("u"), setting, lookup), 0u) << error;
        EXPECT_EQ(Shown(setting.Proxy), "list:2") << error;
    }
    for (const DWORD error : {2u, 8u, 12004u, 12029u, 12165u, 12181u})
    {
        ScriptedLookup lookup({0, true, TEXT("pac"), TEXT("list:2"), nullptr}, {{error}});
        ProxySetting setting;
        EXPECT_EQ(DiscoverProxy(TEXT("u"), setting, lookup), error);
    }
}

TEST(SendThroughProxy, SetsTheListsThatThereAreAndGivesTheResultOfSending)
{
    const struct
    {
        DWORD accessType;
        const WCHAR *proxy;
        const WCHAR *bypass;
        std::vector<std::string> lines;
    } cases[] = {
        {1, nullptr, nullptr, {"send"}},
        {1, nullptr, TEXT("<local>"), {"proxy 1 (null) <local>", "send"}},
        {3, TEXT("p:1"), nullptr, {"proxy 2 p:1 (null)", "send"}},
        {3, TEXT("p:1;q:2"), TEXT("*.lan"), {"proxy 2 p:1;q:2 *.lan", "send"}},
    };
    for (const auto &c : cases)
    {
        CallRecord record;
        FakeXmlHttp http(record);
        ComPtr<IServerXMLHTTPRequest2> request;
        ASSERT_EQ(CoCreateInstance(CLSID_ServerXMLHTTP60, nullptr, CLSCTX_ALL, __uuidof(IServerXMLHTTPRequest2),
                                   request.PutVoid()),
                  S_OK);
        record.Clear();
        ProxySetting setting;
        setting.AccessType = c.accessType;
        setting.Proxy = GlobalTextOwner(GlobalText(c.proxy));
        setting.Bypass = GlobalTextOwner(GlobalText(c.bypass));
        for (const HRESULT result : {S_OK, HRESULT_FROM_WIN32(ERROR_WINHTTP_CANNOT_CONNECT)})
        {
            record.FailOperation("proxy", E_INVALIDARG);
            record.FailOperation("send", result);
            EXPECT_EQ(SendThroughProxy(setting, *request.Get(), VARIANT{}), result);
            EXPECT_EQ(record.Lines(), c.lines);
            record.Clear();
        }
    }
}
