// The text form of the registry, as regedit exports it.
#pragma once

#include "platform/advapi32/RegistryTree.h"

#include <optional>
#include <string>
#include <string_view>

// The tree that the bytes of a file describe. Nothing if they are damaged: another heading, zero bytes, no key, a
// value that is cut off, or not what the check below the heading was made of. Text without a check is read
// as well: earlier versions and regedit write none.
std::optional<RegistryTree> ParseRegistryText(std::string_view bytes);

// The bytes of a file, with a check of everything below it. What has not been changed since it was parsed is
// written as it stood.
std::string FormatRegistryText(const RegistryTree &tree);
