#include "host/ExifFieldValue.h"

#include "host/TextEncodings.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace
{
struct TypeOfField
{
    VARTYPE variant;
    size_t bytes;
};

constexpr WORD TextType = 2;
constexpr WORD UndefinedType = 7;

// By TIFF's number; rationals pass as their two halves, numerator low.
constexpr auto FieldTypes = std::to_array<TypeOfField>({
    {VT_EMPTY, 0},
    {VT_UI1, 1},
    {VT_LPSTR, 1},
    {VT_UI2, 2},
    {VT_UI4, 4},
    {VT_UI8, 8},
    {VT_I1, 1},
    {VT_BLOB, 1},
    {VT_I2, 2},
    {VT_I4, 4},
    {VT_I8, 8},
    {VT_R4, 4},
    {VT_R8, 8},
});

void PutBytes(ExifField &field, WORD type, const void *data, size_t size)
{
    const auto *bytes = static_cast<const BYTE *>(data);
    field.type = type;
    field.data.assign(bytes, bytes + size);
}

// With its closing zero, as the field has it.
void PutText(ExifField &field, const char *text)
{
    PutBytes(field, TextType, text, std::strlen(text) + 1);
}
} // namespace

ExifFieldValue::ExifFieldValue(const ExifField &field) : m_data(field.data)
{
    if (field.type >= FieldTypes.size() || field.data.empty())
    {
        return;
    }
    const auto [variant, bytes] = FieldTypes[field.type];
    m_data.push_back(0);
    if (variant == VT_LPSTR)
    {
        m_value.pszVal = reinterpret_cast<char *>(m_data.data());
    }
    else if (variant == VT_BLOB)
    {
        m_value.blob.cbSize = static_cast<ULONG>(field.data.size());
        m_value.blob.pBlobData = m_data.data();
    }
    else if (bytes == 0 || field.data.size() < bytes)
    {
        return;
    }
    else if (field.data.size() < 2 * bytes)
    {
        std::copy_n(m_data.begin(), bytes, &m_value.bVal);
    }
    else
    {
        m_value.vt = VT_VECTOR;
        m_value.caub.cElems = static_cast<ULONG>(field.data.size() / bytes);
        m_value.caub.pElems = m_data.data();
    }
    m_value.vt = static_cast<VARTYPE>(m_value.vt | variant);
}

bool PutValue(const PROPVARIANT &value, ExifField &field)
{
    if (value.vt == VT_LPSTR && value.pszVal != nullptr)
    {
        PutText(field, value.pszVal);
        return true;
    }
    if (value.vt == VT_LPWSTR && value.pwszVal != nullptr)
    {
        PutText(field, Utf8FromText(value.pwszVal).c_str());
        return true;
    }
    if (value.vt == VT_BLOB)
    {
        PutBytes(field, UndefinedType, value.blob.pBlobData, value.blob.cbSize);
        return true;
    }
    const VARTYPE element = value.vt & VT_TYPEMASK;
    const auto type = std::find_if(FieldTypes.begin() + 1, FieldTypes.end(), [&](const TypeOfField &each) {
        return each.variant == element && each.variant != VT_LPSTR && each.variant != VT_BLOB;
    });
    if (type == FieldTypes.end() || (value.vt & ~(VT_TYPEMASK | VT_VECTOR)) != 0)
    {
        return false;
    }
    const auto number = static_cast<WORD>(type - FieldTypes.begin());
    if ((value.vt & VT_VECTOR) != 0)
    {
        PutBytes(field, number, value.caub.pElems, value.caub.cElems * type->bytes);
    }
    else
    {
        PutBytes(field, number, &value.bVal, type->bytes);
    }
    return true;
}
