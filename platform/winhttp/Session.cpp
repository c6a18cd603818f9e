#include "platform/winhttp/Session.h"

#include "com/Hresult.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>

namespace
{
struct Session
{
};

std::mutex lock;

std::set<std::unique_ptr<Session>, std::less<>> &Sessions()
{
    static std::set<std::unique_ptr<Session>, std::less<>> sessions;
    return sessions;
}

auto Find(HINTERNET handle)
{
    return std::find_if(Sessions().begin(), Sessions().end(),
                        [&](const auto &session) { return session.get() == handle; });
}

bool IsNamed(LPCWSTR text)
{
    return text != nullptr && *text != 0;
}
} // namespace

bool IsOpenSession(HINTERNET handle) noexcept
{
    const std::lock_guard guard(lock);
    return Find(handle) != Sessions().end();
}

// Only what can be said by this library is kept of a session: that it is open. Agent and proxy are for
// requests, of which there are none here.
HINTERNET WINAPI WinHttpOpen(LPCWSTR, DWORD accessType, LPCWSTR proxy, LPCWSTR bypass, DWORD flags)
{
    const bool isNamed = accessType == WINHTTP_ACCESS_TYPE_NAMED_PROXY;
    const bool isKnown = isNamed || accessType == WINHTTP_ACCESS_TYPE_DEFAULT_PROXY ||
                         accessType == WINHTTP_ACCESS_TYPE_NO_PROXY ||
                         accessType == WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY;
    if (!isKnown || isNamed != IsNamed(proxy) || (IsNamed(bypass) && !isNamed) || flags != 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    HINTERNET handle = nullptr;
    AtBoundary([&] {
        auto session = std::make_unique<Session>();
        const std::lock_guard guard(lock);
        handle = Sessions().insert(std::move(session)).first->get();
        return S_OK;
    });
    SetLastError(handle ? ERROR_SUCCESS : ERROR_NOT_ENOUGH_MEMORY);
    return handle;
}

BOOL WINAPI WinHttpCloseHandle(HINTERNET handle)
{
    const std::lock_guard guard(lock);
    const auto session = Find(handle);
    if (session == Sessions().end())
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    Sessions().erase(session);
    return TRUE;
}
