// The text form of the registry, as regedit exports it.
#pragma once

#include "platform/advapi32/RegistryTree.h"

#include <optional>
#include <string>
#include <string_view>

// The tree that the bytes of a file describe; nothing if they are no such text: another heading,
// zero bytes, or cut off in the middle of a value. No bytes at all are an empty tree.
std::optional<RegistryTree> ParseRegistryText(std::string_view bytes);

// The bytes of a file. What has not been changed since it was parsed is written as it stood.
std::string FormatRegistryText(const RegistryTree &tree);
