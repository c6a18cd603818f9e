// The stored settings as a user reads and writes them. The settings key must exist.
#pragma once

#include "host/SettingAssignment.h"

#include <string>
#include <vector>

// Every setting with its value, whether that is the default, and its meaning, a line each.
std::string ListSettings();

// Stores the changes, all in one write of the store. S_OK, or the failure, and then nothing is stored.
HRESULT StoreSettings(const std::vector<SettingAssignment> &changes);
