#include "host/FileDigest.h"

#include "com/Hash.h"

#include <chrono>
#include <fstream>
#include <vector>

namespace fs = std::filesystem;
using namespace std::chrono;

std::optional<FileState> LookAtFile(const fs::path &file)
{
    std::error_code error;
    FileState state{file, fs::file_size(file, error), 0, ""};
    const auto time = error ? fs::file_time_type() : fs::last_write_time(file, error);
    if (error)
    {
        return std::nullopt;
    }
    state.time = duration_cast<nanoseconds>(file_clock::to_sys(time).time_since_epoch()).count();
    return state;
}

std::string DigestOfFile(const fs::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
    {
        return std::string();
    }
    std::vector<char> buffer(size_t{256} << 10);
    Sha256 hash;
    do
    {
        stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        hash.Add({buffer.data(), static_cast<size_t>(stream.gcount())});
    } while (stream);
    return stream.eof() ? hash.Finish() : std::string();
}

std::string DigestOfText(std::string_view text)
{
    Sha256 hash;
    hash.Add(text);
    return hash.Finish();
}
