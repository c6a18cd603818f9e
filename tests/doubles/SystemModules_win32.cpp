#include "tests/doubles/SystemModules.h"

void RegisterSystemModules() {}

// The prefix of the build folder is private already.
void UsePrivateRegistryStore() {}
