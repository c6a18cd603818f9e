// The system's own COM modules, which a test that creates their classes needs.
#pragma once

// Registers the modules of this build, once per program; a failure fails the test. On Windows they are the
// system's and there is nothing to do.
void RegisterSystemModules();

// Keeps the program away from the user's own registry file where the environment names no other. Must be
// called before the first use of the registry.
void UsePrivateRegistryStore();
