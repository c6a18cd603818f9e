// Recognises a file's format by its first bytes.
#pragma once

#include <string>
#include <string_view>

namespace loopback
{

struct FileKind
{
    std::string mimeType;
    std::string extension;
    bool isVideo = false;
};

// The number of bytes that RecogniseFile looks at.
constexpr std::size_t FileKindBytes = 64;

// Returns null for a format that the service doesn't accept.
const FileKind *RecogniseFile(std::string_view firstBytes);

} // namespace loopback
