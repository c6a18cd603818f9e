#include "platform/windowscodecs/jpeg/PropertyValue.h"

#include "com/Hresult.h"
#include "com/WideText.h"
#include "platform/kernel32/Utf8.h"

#include <cstring>

#include <oleauto.h>
#include <wincodec.h>

namespace
{
struct FieldOfType
{
    VARTYPE Variant;
    WORD Field;
};

constexpr FieldOfType Fields[] = {
    {VT_UI1, EXIF_BYTE}, {VT_I1, EXIF_SBYTE},  {VT_UI2, EXIF_SHORT},    {VT_I2, EXIF_SSHORT},
    {VT_UI4, EXIF_LONG}, {VT_I4, EXIF_SLONG},  {VT_UI8, EXIF_RATIONAL}, {VT_I8, EXIF_SRATIONAL},
    {VT_R4, EXIF_FLOAT}, {VT_R8, EXIF_DOUBLE},
};

[[noreturn]] void RefuseType()
{
    ThrowHresult(WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE);
}

std::string ToText(const WCHAR *text, size_t length)
{
    return ToUtf8(WideView(text, length));
}

std::string ToText(const WCHAR *text)
{
    return text != nullptr ? ToUtf8(WideView(text)) : std::string();
}

std::string ToText(const char *text)
{
    return text != nullptr ? ToWellFormedUtf8(text) : std::string();
}

bool IsText(VARTYPE type) noexcept
{
    const VARTYPE element = type & VT_TYPEMASK;
    return element == VT_LPSTR || element == VT_LPWSTR || element == VT_BSTR;
}

ExifEntry EntryFromBytes(WORD field, const void *data, size_t count)
{
    const auto *bytes = static_cast<const BYTE *>(data);
    const size_t size = count * ExifElementBytes(field);
    if (bytes == nullptr || size == 0)
    {
        RefuseType();
    }
    return {0, field, Bytes(bytes, bytes + size)};
}

template <class T>
T *AllocateTask(size_t count)
{
    void *memory = CoTaskMemAlloc(count * sizeof(T));
    if (memory == nullptr)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    return static_cast<T *>(memory);
}

WCHAR *AllocateText(const std::string &text)
{
    const WideText wide = FromUtf8(text);
    WCHAR *copy = AllocateTask<WCHAR>(wide.size() + 1);
    std::memcpy(copy, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
    return copy;
}

std::string Decimal(const PROPVARIANT &value)
{
    switch (value.vt)
    {
    case VT_UI1:
        return std::to_string(value.bVal);
    case VT_I1:
        return std::to_string(value.cVal);
    case VT_UI2:
        return std::to_string(value.uiVal);
    case VT_I2:
        return std::to_string(value.iVal);
    case VT_UI4:
        return std::to_string(value.ulVal);
    case VT_I4:
        return std::to_string(value.lVal);
    case VT_UI8:
        return std::to_string(value.uhVal.QuadPart);
    case VT_I8:
        return std::to_string(value.hVal.QuadPart);
    case VT_BOOL:
        return value.boolVal != VARIANT_FALSE ? "True" : "False";
    default:
        RefuseType();
    }
}
} // namespace

std::string ToWellFormedUtf8(std::string_view text)
{
    std::string whole(text);
    if (ToUtf8(FromUtf8(whole)) == whole)
    {
        return whole;
    }
    WideText wide;
    for (const char c : text)
    {
        wide += static_cast<WCHAR>(static_cast<unsigned char>(c));
    }
    return ToUtf8(wide);
}

ExifEntry EntryFromValue(const PROPVARIANT &value)
{
    if (IsText(value.vt))
    {
        std::string joined;
        for (const std::string &text : TextsFromValue(value))
        {
            joined += text + '\0';
        }
        return EntryFromBytes(EXIF_ASCII, joined.data(), joined.size());
    }
    if (value.vt == VT_BLOB)
    {
        return EntryFromBytes(EXIF_UNDEFINED, value.blob.pBlobData, value.blob.cbSize);
    }
    for (const FieldOfType &field : Fields)
    {
        if (value.vt == field.Variant)
        {
            return EntryFromBytes(field.Field, &value.bVal, 1);
        }
        if (value.vt == (VT_VECTOR | field.Variant))
        {
            return EntryFromBytes(field.Field, value.caub.pElems, value.caub.cElems);
        }
    }
    RefuseType();
}

void ValueFromEntry(const ExifEntry &entry, PROPVARIANT *value)
{
    if (entry.Type == EXIF_ASCII)
    {
        const auto *text = reinterpret_cast<const char *>(entry.Data.data());
        const size_t length = strnlen(text, entry.Data.size());
        value->pszVal = AllocateTask<char>(length + 1);
        std::memcpy(value->pszVal, text, length);
        value->pszVal[length] = '\0';
        value->vt = VT_LPSTR;
        return;
    }
    BYTE *copy = nullptr;
    const ULONG count = static_cast<ULONG>(entry.Data.size() / ExifElementBytes(entry.Type));
    if (entry.Type == EXIF_UNDEFINED || count > 1)
    {
        copy = AllocateTask<BYTE>(entry.Data.size());
        std::memcpy(copy, entry.Data.data(), entry.Data.size());
    }
    if (entry.Type == EXIF_UNDEFINED)
    {
        value->blob.cbSize = count;
        value->blob.pBlobData = copy;
        value->vt = VT_BLOB;
        return;
    }
    for (const FieldOfType &field : Fields)
    {
        if (field.Field != entry.Type)
        {
            continue;
        }
        if (copy != nullptr)
        {
            value->caub.cElems = count;
            value->caub.pElems = copy;
            value->vt = VT_VECTOR | field.Variant;
            return;
        }
        std::memcpy(&value->bVal, entry.Data.data(), entry.Data.size());
        value->vt = field.Variant;
    }
}

std::vector<std::string> TextsFromValue(const PROPVARIANT &value)
{
    std::vector<std::string> texts;
    switch (value.vt)
    {
    case VT_LPSTR:
        return {ToText(value.pszVal)};
    case VT_LPWSTR:
        return {ToText(value.pwszVal)};
    case VT_BSTR:
        return {ToText(value.bstrVal, SysStringLen(value.bstrVal))};
    case VT_VECTOR | VT_LPSTR:
        for (ULONG i = 0; i < value.calpstr.cElems; ++i)
        {
            texts.push_back(ToText(value.calpstr.pElems[i]));
        }
        return texts;
    case VT_VECTOR | VT_LPWSTR:
        for (ULONG i = 0; i < value.calpwstr.cElems; ++i)
        {
            texts.push_back(ToText(value.calpwstr.pElems[i]));
        }
        return texts;
    case VT_VECTOR | VT_BSTR:
        for (ULONG i = 0; i < value.cabstr.cElems; ++i)
        {
            texts.push_back(ToText(value.cabstr.pElems[i], SysStringLen(value.cabstr.pElems[i])));
        }
        return texts;
    default:
        return {Decimal(value)};
    }
}

void ValueFromText(const std::string &text, PROPVARIANT *value)
{
    value->pwszVal = AllocateText(text);
    value->vt = VT_LPWSTR;
}

void ValueFromTexts(const std::vector<std::string> &texts, PROPVARIANT *value)
{
    if (texts.size() == 1)
    {
        ValueFromText(texts.front(), value);
        return;
    }
    WCHAR **elements = AllocateTask<WCHAR *>(texts.size());
    ULONG count = 0;
    for (const std::string &text : texts)
    {
        elements[count++] = AllocateText(text);
    }
    value->calpwstr.cElems = count;
    value->calpwstr.pElems = elements;
    value->vt = VT_VECTOR | VT_LPWSTR;
}
