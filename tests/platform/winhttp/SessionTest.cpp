#include "tests/platform/KnownGaps.h"

#include <winhttp.h>

#include <gmock/gmock.h>

namespace
{
DWORD CodeOf(BOOL result)
{
    return result ? 0 : GetLastError();
}

HINTERNET Open()
{
    return WinHttpOpen(TEXT("Halvora"), WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, nullptr, nullptr, 0);
}

TEST(WinHttpSession, IsClosedOnce)
{
    const HINTERNET session = Open();
    ASSERT_NE(nullptr, session);
    EXPECT_TRUE(WinHttpCloseHandle(session));
    EXPECT_EQ(DWORD{ERROR_INVALID_HANDLE}, CodeOf(WinHttpCloseHandle(session)));
    EXPECT_EQ(DWORD{ERROR_INVALID_HANDLE}, CodeOf(WinHttpCloseHandle(nullptr)));
}

TEST(WinHttpSession, LookupsWantAnAddressOptionsAndAResult)
{
    const HINTERNET session = Open();
    ASSERT_NE(nullptr, session);
    WINHTTP_PROXY_INFO info{};
    WINHTTP_AUTOPROXY_OPTIONS detection{};
    detection.dwFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
    detection.dwAutoDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DNS_A;
    WINHTTP_AUTOPROXY_OPTIONS neither{}, noWay = detection, noScript{};
    noWay.dwAutoDetectFlags = 0;
    noScript.dwFlags = WINHTTP_AUTOPROXY_CONFIG_URL;
    const WCHAR *const url = TEXT("http://a.example/");
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, CodeOf(WinHttpGetProxyForUrl(session, nullptr, &detection, &info)));
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, CodeOf(WinHttpGetProxyForUrl(session, url, nullptr, &info)));
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, CodeOf(WinHttpGetProxyForUrl(session, url, &neither, &info)));
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, CodeOf(WinHttpGetProxyForUrl(session, url, &noWay, &info)));
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, CodeOf(WinHttpGetProxyForUrl(session, url, &noScript, &info)));
    EXPECT_EQ(nullptr, info.lpszProxy);
    EXPECT_TRUE(WinHttpCloseHandle(session));
}
} // namespace
