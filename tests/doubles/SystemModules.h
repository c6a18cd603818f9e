// The system's own COM modules, which a test that creates their classes needs.
#pragma once

// Registers the modules of this build, once per program; a failure fails the test. On Windows they are the
// system's and there is nothing to do.
void RegisterSystemModules();

// Keeps the program off the user's own registry store if the environment names none. Call it before the
// first use of the registry.
void UsePrivateRegistryStore();
