// Keys and values of the registry in memory. A path is one below HKEY_CURRENT_USER, its names separated by
// backslashes; names are compared without regard to case.
#pragma once

#include "com/WideText.h"

#include <map>
#include <vector>

struct RegistryValue
{
    WideText name; // empty: the default value
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

struct RegistryKey
{
    WideText path; // in the case that it was made with
    std::vector<RegistryValue> values;

    const RegistryValue *FindValue(WideView name) const;
    void SetValue(RegistryValue value);
    bool DeleteValue(WideView name);
};

class RegistryContent
{
public:
    // Whether there is the key, or one below it. HKEY_CURRENT_USER itself, the empty path, is always there.
    bool Has(WideView path) const;
    bool HasBelow(WideView path) const;

    // Null if the key holds nothing of its own.
    const RegistryKey *Find(WideView path) const;

    // The key, made if it is missing.
    RegistryKey &Make(WideView path);

    void Delete(WideView path);

    // By folded path.
    const std::map<WideText, RegistryKey> &Keys() const { return m_keys; }

private:
    std::map<WideText, RegistryKey> m_keys;
};

// Paths and names are compared by this form of them.
WideText FoldRegistryName(WideView name);
