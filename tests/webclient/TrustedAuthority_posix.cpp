#include "tests/webclient/TrustedAuthority.h"

#include <cstdlib>

// The transport reads the variable itself.
bool TrustedAuthority::Begin()
{
    return std::getenv("HALVORA_CA_FILE") != nullptr;
}

void TrustedAuthority::End() {}
