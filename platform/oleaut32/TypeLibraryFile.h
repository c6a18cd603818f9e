// A type library in the binary form that the system's compilers write, read as far as registration and calls
// by name need it. The bytes may come from anywhere: what doesn't hold together is refused.
#pragma once

#include "com/WideText.h"

#include <windows.h>
#include <oaidl.h>

#include <span>
#include <vector>

struct TypeFunction
{
    WideText name;
    MEMBERID id = 0;
    size_t slot = 0; // in the table of functions, counted from 0
    std::vector<WideText> parameters;
};

struct TypeDescription
{
    WideText name;
    WideText help;
    GUID id{};
    TYPEKIND kind{};
    WORD flags = 0;
    WORD major = 0, minor = 0;
    std::vector<TypeFunction> functions;
};

struct TypeLibraryContent
{
    WideText name;
    WideText help;
    TLIBATTR attributes{};
    std::vector<TypeDescription> types;
};

// Throws TYPE_E_CANTLOADLIBRARY if the bytes are no type library, TYPE_E_INVDATAREAD if one is damaged.
TypeLibraryContent ReadTypeLibrary(std::span<const BYTE> bytes);
