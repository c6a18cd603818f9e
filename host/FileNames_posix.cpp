#include "host/FileNames.h"

#include "com/SafeText.h"

WideText TextOfPath(const std::filesystem::path &path)
{
    return PathFromBytes(path.native());
}

std::filesystem::path PathOfText(WideView text)
{
    return std::filesystem::path(PathToBytes(text));
}

std::string ShownPath(const std::filesystem::path &path)
{
    return OneSafeLine(path.native());
}

std::string NameBytes(const std::filesystem::path &path)
{
    return path.native();
}

std::filesystem::path PathOfNameBytes(const std::string &bytes)
{
    return bytes;
}

std::filesystem::path IdentityOf(const std::filesystem::path &file)
{
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::absolute(file, error);
    const std::filesystem::path folder = std::filesystem::canonical(whole.parent_path(), error);
    return (error ? whole.parent_path() : folder) / whole.filename();
}

bool IsHidden(const std::filesystem::path &entry)
{
    return entry.filename().native().starts_with('.');
}

std::string FileErrorWords(const std::error_code &error)
{
    // As TryToRead has it.
    return error == std::errc::invalid_argument ? "It is a pipe or a device, not a file" : error.message();
}
