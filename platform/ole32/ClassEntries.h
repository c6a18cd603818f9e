// Reading the registry's entries of classes.
#pragma once

#include "com/WideText.h"

#include <objbase.h>

// Path of the class's key below HKEY_CLASSES_ROOT.
WideText ClassKeyPath(REFCLSID clsid);

// The default value of a key below HKEY_CLASSES_ROOT. False if there is none, or an empty text.
bool ReadClassesEntry(const WideText &path, WideText &text);
