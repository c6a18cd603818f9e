// The module (DLL, shared object or test program) that this code is linked into. Its resources and
// its file are found by this handle.
#pragma once

#include "com/WideText.h"

#include <windows.h>

// Not counted and never freed; null only if the loader doesn't know the module.
HMODULE ThisModule() noexcept;

// Full path of the module's file; empty if the system doesn't tell it.
WideText ThisModulePath();
