// The certificate authority of HALVORA_CA_FILE, trusted while tests run.
#pragma once

namespace TrustedAuthority
{
// Windows: in the user's store of root authorities, which only a throw-away prefix of Wine may have; anywhere
// else nothing is done. False if it can't be, or there is no such file.
bool Begin();

// Takes the authority away again.
void End();
} // namespace TrustedAuthority
