// A field of an EXIF block as a value of the imaging component's metadata queries.
#pragma once

#include "host/MetadataSnapshots.h"

#include <objidl.h>

// A field's value, valid as long as the object lives and the field's data doesn't change. VT_EMPTY if the
// data doesn't fit the type.
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

// Type and data of a field from the value that a query gave; returns false for a value that no field can hold.
bool PutValue(const PROPVARIANT &value, ExifField &field);
