// SHA-256, by which files with the same bytes are known: 64 lower-case hexadecimal digits.
#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

// Empty if the file can't be read to its end.
std::string DigestOfFile(const std::filesystem::path &file);

std::string DigestOfText(std::string_view text);

using Sha256Digest = std::array<unsigned char, 32>;

// The digest of all chunks that next returns until an empty one, by the system's library. A chunk is valid until
// next is called again. Throws std::bad_alloc.
Sha256Digest Sha256OfChunks(const std::function<std::string_view()> &next);
