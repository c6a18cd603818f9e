// The module's string table, by the identifiers of resources/resource.h. Every text that a user reads comes
// from here.
#pragma once

#include "com/BstrOwner.h"
#include "com/WideText.h"

#include <windows.h>

// Sets text to the entry. False, with a null text, if the table has no such entry or an empty one.
// E_OUTOFMEMORY is thrown.
bool LoadStringResource(UINT id, BstrOwner &text);

// The entry, or "?" for one that is absent: a missing text is never a failure.
WideText LoadStringOrPlaceholder(UINT id);
