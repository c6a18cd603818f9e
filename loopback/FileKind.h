// What a file is, by its first bytes.
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

// As many bytes as the recognition looks at.
constexpr std::size_t FileKindBytes = 64;

// Null for what the service doesn't take.
const FileKind *RecogniseFile(std::string_view firstBytes);

} // namespace loopback
