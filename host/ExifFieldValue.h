// A field of an EXIF block as a value of the imaging component's metadata queries.
#pragma once

#include "host/MetadataSnapshots.h"

#include <objidl.h>

// The value of a field; lives as long as both the object and the field's data don't change. VT_EMPTY for
// data that its type doesn't fit.
class ExifFieldValue
{
public:
    explicit ExifFieldValue(const ExifField &field);
    ExifFieldValue(const ExifFieldValue &) = delete;
    ExifFieldValue &operator=(const ExifFieldValue &) = delete;

    const PROPVARIANT &Get() const noexcept { return m_value; }

private:
    std::vector<BYTE> m_data;
    PROPVARIANT m_value = {};
};

// Type and data of a field by the value that a query gave; false for a value that no field has.
bool PutValue(const PROPVARIANT &value, ExifField &field);
