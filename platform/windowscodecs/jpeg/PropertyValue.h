// Converts metadata values between PROPVARIANTs, as the query interfaces carry them, and the form in the
// blocks. Values given out are task memory, for PropVariantClear.
#pragma once

#include "platform/windowscodecs/jpeg/ExifBlock.h"

#include <objidl.h>
#include <propidl.h>

#include <string>
#include <vector>

// The value as an entry without tag, little-endian. An unsigned 64-bit number is a rational, the
// numerator in the lower half; a signed one alike. Texts become ASCII fields in UTF-8, with their
// zero. Throws WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE for what has no field type.
ExifEntry EntryFromValue(const PROPVARIANT &value);

// The reverse, one element alone and several as a vector. An undefined field is a blob.
void ValueFromEntry(const ExifEntry &entry, PROPVARIANT *value);

// The texts in the value, UTF-8; numbers in decimal digits. Throws as above.
std::vector<std::string> TextsFromValue(const PROPVARIANT &value);

void ValueFromText(const std::string &text, PROPVARIANT *value);

// One text alone, several as a vector.
void ValueFromTexts(const std::vector<std::string> &texts, PROPVARIANT *value);

// Text of unknown encoding: UTF-8 if it is well-formed as that, else Latin-1. The result is UTF-8.
std::string ToWellFormedUtf8(std::string_view text);
