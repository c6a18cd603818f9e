// Converts metadata values between PROPVARIANTs, as the query interfaces carry them, and the form in the
// blocks. Values given out are task memory, for PropVariantClear.
#pragma once

#include "platform/windowscodecs/jpeg/ExifBlock.h"

#include <objidl.h>
#include <propidl.h>

#include <string>
#include <vector>

// The value as an entry without tag, little-endian. An unsigned 64-bit number is a rational, the
// numerator in the lower half; a signed one alike. A text becomes an ASCII field in UTF-8, with its
// zero. Throws WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE for what has no field type.
ExifEntry EntryFromValue(const PROPVARIANT &value);

// The reverse, one element alone and several as a vector. An undefined field is a blob.
void ValueFromEntry(const ExifEntry &entry, PROPVARIANT *value);

// The texts in the value, UTF-8. Throws as above for what is none.
std::vector<std::string> TextsFromValue(const PROPVARIANT &value);
