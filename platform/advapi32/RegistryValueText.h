// One value of the registry's text form: "name"=..., with its continuation lines.
#pragma once

#include "platform/advapi32/RegistryTree.h"

#include <optional>
#include <string_view>

// Nothing if the text is no value. The text is kept in the result.
std::optional<RegistryLine> ParseRegistryValue(std::string_view text);

std::string FormatRegistryValue(const RegistryLine &value);
