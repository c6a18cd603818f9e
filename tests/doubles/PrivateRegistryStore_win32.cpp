#include "tests/doubles/SettingsKey.h"

// The prefix of the build folder is private already.
void UsePrivateRegistryStore() {}
