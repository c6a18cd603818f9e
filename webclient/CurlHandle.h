// An easy handle of libcurl, borrowed from a pool of the process for one exchange. The handle keeps its connection,
// TLS sessions and host addresses from one exchange with a host to the next, and is used by one thread at a time.
#pragma once

#include <string>
#include <string_view>

class CurlHandle
{
public:
    // Prefers the handle that was used last for this address's scheme, host and port.
    explicit CurlHandle(std::string_view url);
    ~CurlHandle();
    CurlHandle(const CurlHandle &) = delete;
    CurlHandle &operator=(const CurlHandle &) = delete;

    // libcurl's own type for it is void.
    void *Get() const noexcept { return m_handle; }

private:
    std::string m_origin;
    void *m_handle;
};
