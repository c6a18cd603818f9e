// The verifier of an authorization, fetched from the maker's endpoint with one plain request.
#pragma once

#include "account/ProxyDiscovery.h"
#include "com/SecretBstr.h"
#include "com/WideText.h"

#include <windows.h>

// The address of the verifier that belongs to an authorization page. Throws E_FAIL if the page's address
// names no request token.
SecretBstr VerifierUrl(WideView pageAddress);

// Sends one request and blocks the calling thread until the reply is there or the system gives up. Returns
// the code of the step that failed: E_NOINTERFACE for a reply that is no document, E_FAIL for one without a
// verifier, with a message in the thread's COM error object. A proxy that can't be found is no failure.
HRESULT FetchVerifier(WideView pageAddress, const ProxyDiscovery &discoverProxy, SecretBstr &verifier);
