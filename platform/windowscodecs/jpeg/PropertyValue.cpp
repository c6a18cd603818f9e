#include "platform/windowscodecs/jpeg/PropertyValue.h"

#include "com/Hresult.h"
#include "com/WideText.h"
#include "com/TextConversion.h"

#include <cstring>

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
} // namespace

ExifEntry EntryFromValue(const PROPVARIANT &value)
{
    if (value.vt == VT_LPSTR || value.vt == VT_LPWSTR)
    {
        const std::string text = TextsFromValue(value).front();
        return EntryFromBytes(EXIF_ASCII, text.c_str(), text.size() + 1);
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
    const auto texts = [](const WCHAR *const *wide, ULONG count) {
        std::vector<std::string> all;
        for (ULONG i = 0; i < count; ++i)
        {
            all.push_back(wide[i] != nullptr ? ToUtf8(wide[i]) : std::string());
        }
        return all;
    };
    switch (value.vt)
    {
    case VT_LPSTR:
        return {value.pszVal != nullptr ? value.pszVal : ""};
    case VT_LPWSTR:
        return texts(&value.pwszVal, 1);
    case VT_VECTOR | VT_LPWSTR:
        return texts(value.calpwstr.pElems, value.calpwstr.cElems);
    default:
        RefuseType();
    }
}
