#define WIN32_LEAN_AND_MEAN
#include "webclient/CurlHandle.h"

#include "com/Hresult.h"

#include <curl/curl.h>

#include <sys/socket.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

namespace
{
struct HandleCloser
{
    void operator()(CURL *handle) const noexcept { curl_easy_cleanup(handle); }
};
using EasyHandle = std::unique_ptr<CURL, HandleCloser>;

class HandlePool
{
public:
    // Made on first use. libcurl and OpenSSL are set up inside the constructor, so that their own
    // ends, registered there, come after the pool's when the process exits.
    static HandlePool &Get()
    {
        static HandlePool pool;
        return pool;
    }

    ~HandlePool()
    {
        m_idle.clear();
        curl_global_cleanup();
    }

    // The handle that was used last for this origin, whose connection is the most likely to be open still, or a new
    // one.
    EasyHandle Take(std::string_view origin)
    {
        {
            const std::lock_guard guard(m_lock);
            const auto found = std::find_if(m_idle.rbegin(), m_idle.rend(),
                                            [&](const Idle &idle) { return idle.origin == origin; });
            if (found != m_idle.rend())
            {
                EasyHandle handle = std::move(found->handle);
                m_idle.erase(std::next(found).base());
                CloseIfLeft(handle.get());
                return handle;
            }
        }
        EasyHandle handle(curl_easy_init());
        if (!handle)
        {
            ThrowHresult(E_OUTOFMEMORY);
        }
        return handle;
    }

    // Keeps MostIdle handles at most, and closes the one that has been idle longest.
    void GiveBack(EasyHandle handle, std::string origin) noexcept
    {
        curl_easy_reset(handle.get()); // keeps connection and sessions
        const std::lock_guard guard(m_lock);
        if (m_idle.size() == MostIdle)
        {
            m_idle.erase(m_idle.begin());
        }
        m_idle.push_back({std::move(origin), std::move(handle)}); // reserved: doesn't throw
    }

private:
    static constexpr size_t MostIdle = 8;

    struct Idle
    {
        std::string origin;
        EasyHandle handle;
    };

    // A server that closes a TLS connection sends a last record. libcurl takes it for a sign of life and
    // would send the next request into a closed connection. Nothing else can be read on an idle connection.
    static void CloseIfLeft(CURL *handle) noexcept
    {
        curl_socket_t connection = CURL_SOCKET_BAD;
        char bytes[256];
        if (curl_easy_getinfo(handle, CURLINFO_ACTIVESOCKET, &connection) != CURLE_OK ||
            connection == CURL_SOCKET_BAD || recv(connection, bytes, sizeof(bytes), MSG_DONTWAIT) <= 0)
        {
            return; // no connection, an idle one, or an end that libcurl notices itself
        }
        // That record is read now, so TLS can't go on here: make libcurl notice the end.
        shutdown(connection, SHUT_RDWR);
        while (recv(connection, bytes, sizeof(bytes), MSG_DONTWAIT) > 0)
        {
        }
    }

    HandlePool()
    {
        if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        {
            ThrowHresult(E_FAIL);
        }
        m_idle.reserve(MostIdle);
    }

    std::mutex m_lock;
    std::vector<Idle> m_idle;
};

// "https://host:port" of an address.
std::string_view OriginOf(std::string_view url)
{
    const size_t host = url.find("://");
    return url.substr(0, url.find_first_of("/?", host == std::string_view::npos ? 0 : host + 3));
}
} // namespace

CurlHandle::CurlHandle(std::string_view url)
    : m_origin(OriginOf(url)), m_handle(HandlePool::Get().Take(m_origin).release())
{
}

CurlHandle::~CurlHandle()
{
    HandlePool::Get().GiveBack(EasyHandle(m_handle), std::move(m_origin));
}
