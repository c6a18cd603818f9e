// The text of the registry's file, UTF-8:
//
//     Windows Registry Editor Version 5.00
//     ; checked: 90 bytes follow, CRC-32 01234567. After a change by hand delete this line.
//
//     [HKEY_CURRENT_USER\Software\Name]
//     "Text"="with \"quotes\" and \\"
//     "Number"=dword:0000002a
//     "Bytes"=hex(3):01,02
#pragma once

#include "platform/advapi32/RegistryContent.h"

#include <optional>
#include <string>
#include <string_view>

// What the bytes of a file say. Nothing if they are damaged: another heading, zero bytes, no key, a last line that
// is cut off, or not what the check was made of. A file without a check is read as well: earlier versions and people
// write such. What else stands in the file, keys outside of HKEY_CURRENT_USER and the classes that earlier versions
// registered among it, is passed over.
std::optional<RegistryContent> ParseRegistryText(std::string_view bytes);

std::string FormatRegistryText(const RegistryContent &content);
