// The settings key as a fixture: created empty by the constructor, deleted by the destructor.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <string>
#include <vector>

class SettingsKey
{
public:
    SettingsKey();
    ~SettingsKey();
    SettingsKey(const SettingsKey &) = delete;
    SettingsKey &operator=(const SettingsKey &) = delete;

    void Set(const WCHAR *name, UINT32 value);
    void Set(const WCHAR *name, const WCHAR *text);
    void SetBytes(const WCHAR *name, DWORD type, const std::vector<BYTE> &bytes);
    void Remove(const WCHAR *name);

    // Gives every setting a value that no code writes, and reports the settings that have changed since, in the
    // order of the table: "IsPublic=1 IsFriend=1".
    void MarkAll();
    std::string Written() const;

    // Removes the key itself.
    void RemoveKey();
};

// Keeps the program away from the user's own registry file where the environment names no other. Must be
// called before the first use of the registry.
void UsePrivateRegistryStore();
