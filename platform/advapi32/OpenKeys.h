// Open keys: the key that a handle stands for, and how handle and subkey lead to keys of the tree.
#pragma once

#include "platform/advapi32/RegistryTree.h"

#include <vector>

// A key by its full path. A key of the merged view of the classes has two places, the user's ahead
// of the machine's; others have one.
class KeyPlace
{
public:
    explicit KeyPlace(std::vector<WideText> paths) : m_paths(std::move(paths)) {}

    KeyPlace Below(WideView subkey) const;

    // The first place where the key exists; null if it exists nowhere.
    const RegistryKey *Find(const RegistryTree &tree) const;
    RegistryKey *Find(RegistryTree &tree) const;

    // All keys at these places, in order.
    std::vector<const RegistryKey *> FindAll(const RegistryTree &tree) const;

    // Its path where it exists; where it doesn't, the one where it is to be made.
    const WideText &Path(const RegistryTree &tree) const;

private:
    std::vector<WideText> m_paths;
};

// Opens a handle; access is what the caller asked for.
HKEY OpenHandle(KeyPlace place, REGSAM access);
LSTATUS CloseHandleOf(HKEY key);

// Makes the predefined key stand for the key that the handle target was opened for; the handle may be closed
// afterwards. Null undoes it. ERROR_INVALID_HANDLE, also if target is a predefined key.
LSTATUS MapPredefinedKey(HKEY key, HKEY target);

// The place of subkey (may be null) below key. ERROR_INVALID_HANDLE; ERROR_ACCESS_DENIED if the
// handle lacks one of the rights needed; ERROR_BAD_PATHNAME for a subkey that starts with a
// backslash; ERROR_INVALID_PARAMETER for a name of more than 255 characters.
LSTATUS LocateKey(HKEY key, LPCWSTR subkey, REGSAM needed, KeyPlace &place);
