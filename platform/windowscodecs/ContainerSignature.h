// The container format of a picture's file, told by its first bytes.
#pragma once

#include <windows.h>

#include <span>

// As many bytes as the longest signature looks at.
constexpr ULONG SignatureLength = 12;

// The format's GUID, or null if no signature fits. head may be shorter than SignatureLength.
const GUID *RecogniseContainer(std::span<const BYTE> head);
