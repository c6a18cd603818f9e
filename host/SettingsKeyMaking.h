// The key of the plug-in's settings, which the plug-in itself never makes.
#pragma once

#include <windows.h>

// Makes the key where it is missing.
HRESULT MakeSettingsKey();
