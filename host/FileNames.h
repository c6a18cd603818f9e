// File names as the plug-in has them and as the file system does. At the interface a name is UTF-16. Where it is bytes
// on disk, the convention is that of the platform's file functions: a byte that belongs to no valid UTF-8
// sequence is the lone surrogate U+DC00 + byte. Every name survives the round trip.
#pragma once

#include "com/AsciiText.h" // by which extensions are compared
#include "com/WideText.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

WideText TextOfPath(const std::filesystem::path &path);
std::filesystem::path PathOfText(WideView text);

// For a user: valid UTF-8 in one line, what is no text as U+FFFD.
std::string ShownPath(const std::filesystem::path &path);

// A path's text for comparing and sorting: its bytes as on disk, or UTF-8 where names are UTF-16.
std::string NameBytes(const std::filesystem::path &path);
std::filesystem::path PathOfNameBytes(const std::string &bytes);

// Without the dot, as NameBytes.
inline std::string ExtensionOf(const std::filesystem::path &file)
{
    const std::string extension = NameBytes(file.extension());
    return extension.empty() ? extension : extension.substr(1);
}

// The order in which a user expects names: numbers by value, letters without regard to case. A strict weak order over
// bytes; names that differ only in case or in leading zeros are ordered by their bytes, so that no two different names
// are equal.
bool NaturallyBefore(std::string_view left, std::string_view right);

// The same for every name that leads to a file of this name in the same folder: links to folders are
// resolved, and case is folded where the system doesn't tell it apart. To be compared, not opened.
std::filesystem::path IdentityOf(const std::filesystem::path &file);

// Whether a walk through a folder skips the entry.
bool IsHidden(const std::filesystem::path &entry);

// The system's words for a failure with a file, in UTF-8.
std::string FileErrorWords(const std::error_code &error);
