// The text form of a registry script, parsed into keys and values:
//
//     HKCR
//     {
//         NoRemove CLSID
//         {
//             ForceRemove '{...}' = s 'default value'
//             {
//                 val ThreadingModel = s 'Both'
//             }
//         }
//     }
//
// Words end at white space, or stand between single quotes, where two of them are one. Values: s 'text',
// d 'number', decimal or with &H in front, b 'bytes in hexadecimal'.
#pragma once

#include "com/WideText.h"

#include <map>
#include <optional>
#include <vector>

struct ScriptValue
{
    DWORD type = REG_SZ;
    std::vector<BYTE> data;
};

enum class ScriptAction
{
    Plain,       // made, and removed again if nothing else lies below it
    NoRemove,    // made, and left
    ForceRemove, // emptied before it is made, removed with all that lies below
    Delete       // deleted when the script is applied
};

struct ScriptKey
{
    WideText name;
    ScriptAction action = ScriptAction::Plain;
    std::optional<ScriptValue> value; // the default one

    struct NamedValue
    {
        WideText name;
        ScriptValue value;
        bool isLeft = false; // NoRemove
    };
    std::vector<NamedValue> values;
    std::vector<ScriptKey> keys;
};

struct ScriptRoot
{
    HKEY root = nullptr;
    std::vector<ScriptKey> keys;
};

// Replacements by name in upper case; names are compared without regard to case, and %% is a percent sign.
using ScriptReplacements = std::map<WideText, WideText>;
WideText UpperCaseName(WideView name);

// Throws DISP_E_EXCEPTION for a text that is no script, for a name without a replacement, for a root that isn't
// known, and for a ForceRemove or Delete of a path or of a key that many share, as CLSID.
std::vector<ScriptRoot> ReadRegistryScript(WideView text, const ScriptReplacements &replacements);
