#include "tests/doubles/PrivateRegistryStore.h"

// The prefix of the build folder is private already.
void UsePrivateRegistryStore() {}
