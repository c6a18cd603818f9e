// Tests that use the registry.
#pragma once

// Keeps the program away from the user's own registry file where the environment names no other. Must be
// called before the first use of the registry.
void UsePrivateRegistryStore();
