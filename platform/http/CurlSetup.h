// What all requests of the native build have in common, uploads and the verifier's: where connections lead, and
// who is trusted. The proxy is the caller's to name: by the environment (EnvironmentProxy.h) in either case, which
// the plug-in asks by its discovery and the web components ask themselves.
//
// HALVORA_CONNECT_TO, a list of "host:port:to-host:to-port" with ';' between them, leads connections elsewhere.
// HALVORA_CA_FILE names the certificates that are trusted instead of the system's.
#pragma once

#include "platform/http/EnvironmentProxy.h"

#include <chrono>
#include <memory>

enum class CertificateFault
{
    OtherHost,
    Expired,
    NotYetValid,
    Untrusted
};

// One easy handle of libcurl, which this doesn't own, prepared for http and https: HTTP/1.1, no redirection
// followed, TLS 1.2 and later, the host's certificate checked. The handle must not send after this has ended.
class CurlSetup
{
public:
    // The type of a handle has no name here: to libcurl it is void. Throws E_OUTOFMEMORY or E_FAIL.
    CurlSetup(void *handle, const ProxyChoice &proxy, std::chrono::milliseconds connectLimit);

    // Why the handle's last connection failed with CURLE_PEER_FAILED_VERIFICATION.
    CertificateFault FaultOfCertificate() const;

private:
    void SetProxy(const ProxyChoice &proxy);
    void SetTrust();
    void SetConnectTo();

    void *m_handle;
    std::shared_ptr<void> m_connectTo;
};
