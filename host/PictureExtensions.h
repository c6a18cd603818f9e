// The file name extensions by which pictures are known.
#pragma once

#include <span>
#include <string_view>

// Without the dot and without regard to case.
bool IsPictureExtension(std::string_view extension);

// Files that lie beside a picture and belong to it, such as xmp: never published themselves.
bool IsSidecarExtension(std::string_view extension);

// All that IsPictureExtension knows, in lower case and sorted.
std::span<const std::string_view> PictureExtensions();
