// Texts of identifiers, and the registry's links between class identifiers and program identifiers.
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "platform/ole32/ClassEntries.h"

#include <objbase.h>

#include <cstring>
#include <string>

namespace
{
constexpr int TextLength = 38;

WideText FormatGuid(REFGUID guid)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    WideText text(1, u'{');
    const auto append = [&](unsigned long long value, int width) {
        for (int shift = 4 * (width - 1); shift >= 0; shift -= 4)
        {
            text += static_cast<WCHAR>(Digits[(value >> shift) & 15]);
        }
    };
    append(guid.Data1, 8);
    text += u'-';
    append(guid.Data2, 4);
    text += u'-';
    append(guid.Data3, 4);
    for (int i = 0; i < 8; ++i)
    {
        if (i == 0 || i == 2)
        {
            text += u'-';
        }
        append(guid.Data4[i], 2);
    }
    text += u'}';
    return text;
}

int HexDigit(WCHAR unit)
{
    return unit >= u'0' && unit <= u'9'   ? unit - u'0'
           : unit >= u'A' && unit <= u'F' ? unit - u'A' + 10
           : unit >= u'a' && unit <= u'f' ? unit - u'a' + 10
                                          : -1;
}

bool ParseGuid(WideView text, GUID &guid)
{
    static constexpr char Pattern[] = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
    if (text.size() != TextLength)
    {
        return false;
    }
    BYTE bytes[16] = {};
    int count = 0;
    for (int i = 0; i < TextLength; ++i)
    {
        const int digit = HexDigit(text[i]);
        if (Pattern[i] == 'x' ? digit < 0 : text[i] != static_cast<WCHAR>(Pattern[i]))
        {
            return false;
        }
        if (Pattern[i] == 'x')
        {
            bytes[count / 2] = static_cast<BYTE>(bytes[count / 2] << 4 | digit);
            ++count;
        }
    }
    guid.Data1 = static_cast<DWORD>(bytes[0]) << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
    guid.Data2 = static_cast<WORD>(bytes[4] << 8 | bytes[5]);
    guid.Data3 = static_cast<WORD>(bytes[6] << 8 | bytes[7]);
    std::memcpy(guid.Data4, bytes + 8, 8);
    return true;
}

HRESULT CopyToTaskMemory(WideView text, LPOLESTR *copy)
{
    const size_t bytes = (text.size() + 1) * sizeof(OLECHAR);
    auto *memory = static_cast<LPOLESTR>(CoTaskMemAlloc(bytes));
    if (memory == nullptr)
    {
        return E_OUTOFMEMORY;
    }
    std::memcpy(memory, text.data(), text.size() * sizeof(OLECHAR));
    memory[text.size()] = 0;
    *copy = memory;
    return S_OK;
}
} // namespace

INT WINAPI StringFromGUID2(REFGUID guid, LPOLESTR text, INT capacity)
{
    if (text == nullptr || capacity < TextLength + 1)
    {
        return 0;
    }
    const WideText formatted = FormatGuid(guid);
    std::memcpy(text, formatted.c_str(), (TextLength + 1) * sizeof(OLECHAR));
    return TextLength + 1;
}

HRESULT WINAPI StringFromCLSID(REFCLSID clsid, LPOLESTR *text)
{
    if (text == nullptr)
    {
        return E_INVALIDARG;
    }
    *text = nullptr;
    return AtBoundary([&] { return CopyToTaskMemory(FormatGuid(clsid), text); });
}

HRESULT WINAPI CLSIDFromProgID(LPCOLESTR progId, LPCLSID clsid)
{
    if (progId == nullptr || clsid == nullptr)
    {
        return E_INVALIDARG;
    }
    *clsid = GUID{};
    return AtBoundary([&] {
        WideText text;
        return ReadClassesEntry(WideText(progId) + TEXT("\\CLSID"), text) && ParseGuid(text, *clsid)
                   ? S_OK
                   : CO_E_CLASSSTRING;
    });
}

HRESULT WINAPI ProgIDFromCLSID(REFCLSID clsid, LPOLESTR *progId)
{
    if (progId == nullptr)
    {
        return E_INVALIDARG;
    }
    *progId = nullptr;
    return AtBoundary([&] {
        WideText text;
        return ReadClassesEntry(ClassKeyPath(clsid) + TEXT("\\ProgID"), text) ? CopyToTaskMemory(text, progId)
                                                                              : REGDB_E_CLASSNOTREG;
    });
}

// Takes a program identifier as well, as Windows does.
HRESULT WINAPI CLSIDFromString(LPCOLESTR text, LPCLSID clsid)
{
    if (clsid == nullptr)
    {
        return E_INVALIDARG;
    }
    *clsid = GUID{};
    if (text == nullptr)
    {
        return S_OK;
    }
    if (text[0] != u'{')
    {
        return CLSIDFromProgID(text, clsid);
    }
    return ParseGuid(text, *clsid) ? S_OK : CO_E_CLASSSTRING;
}

HRESULT WINAPI IIDFromString(LPCOLESTR text, LPIID iid)
{
    if (iid == nullptr)
    {
        return E_INVALIDARG;
    }
    *iid = GUID{};
    if (text == nullptr)
    {
        return S_OK;
    }
    return WideView(text).size() != TextLength ? E_INVALIDARG : ParseGuid(text, *iid) ? S_OK : CO_E_IIDSTRING;
}

WideText ClassKeyPath(REFCLSID clsid)
{
    return TEXT("CLSID\\") + FormatGuid(clsid);
}

bool ReadClassesEntry(const WideText &path, WideText &text)
{
    RegistryKeyOwner key;
    DWORD type = 0;
    DWORD bytes = 0;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_QUERY_VALUE, key.Put()) != ERROR_SUCCESS ||
        RegQueryValueExW(key.Get(), nullptr, nullptr, &type, nullptr, &bytes) != ERROR_SUCCESS || type != REG_SZ)
    {
        return false;
    }
    text.assign(bytes / sizeof(WCHAR), 0);
    bytes = static_cast<DWORD>(text.size() * sizeof(WCHAR));
    if (RegQueryValueExW(key.Get(), nullptr, nullptr, &type, reinterpret_cast<BYTE *>(text.data()), &bytes) !=
        ERROR_SUCCESS)
    {
        return false;
    }
    text.resize(WideView(text.c_str()).size());
    return !text.empty();
}
