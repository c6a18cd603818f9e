// Keys and values in memory, with the text of the file that they came from.
#pragma once

#include "com/WideText.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

// A value, or text between values that is kept as it stands.
struct RegistryLine
{
    bool isValue = false;
    WideText name; // empty: the default value
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
    std::string text; // as in the file, without the line's end; empty for a value that has changed
};

struct RegistryKey
{
    WideText name;                                             // in the case that it was made with
    std::map<WideText, std::unique_ptr<RegistryKey>> children; // by folded name
    std::vector<RegistryLine> lines;
    size_t position = 0; // order in the file; 0: has no section of its own

    RegistryLine *FindValue(WideView valueName);
    const RegistryLine *FindValue(WideView valueName) const;
    size_t CountValues() const;
    void SetValue(WideView valueName, DWORD type, std::vector<BYTE> data);
    bool DeleteValue(WideView valueName);
};

struct RegistryTree
{
    RegistryTree();

    // path is full, its names separated by backslashes: HKEY_CURRENT_USER\Software.
    const RegistryKey *Find(WideView path) const;
    RegistryKey *Find(WideView path);

    // The key; if it is missing it is made, and the missing keys above it too.
    RegistryKey &Make(WideView path);
    void Delete(WideView path);

    RegistryKey root;
    std::vector<std::string> preamble; // lines ahead of the first key
    size_t lastPosition = 0;
    bool isUtf16 = false;
    bool hasCarriageReturns = false;
};

// Names are compared by this form of them.
WideText FoldRegistryName(WideView name);

// Cuts the first name off path.
WideView TakeFirstName(WideView &path);
