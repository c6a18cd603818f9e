#include "host/FileNames.h"

#include "com/SafeText.h"
#include "host/SystemWords.h"
#include "host/TextEncodings.h"

#include "com/HandleOwner.h"

namespace fs = std::filesystem;

namespace
{
// The folder's one name, free of links; the name given where it can't be opened.
fs::path FinalName(const fs::path &folder)
{
    const FileOwner opened(CreateFileW(folder.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    WideText name(MAX_PATH, 0);
    while (opened)
    {
        const DWORD length =
            GetFinalPathNameByHandleW(opened.Get(), name.data(), static_cast<DWORD>(name.size()), VOLUME_NAME_DOS);
        if (length == 0)
        {
            break;
        }
        // The length without the closing zero if it fitted, with it if not.
        const bool fitted = length < name.size();
        name.resize(length);
        if (fitted)
        {
            return name;
        }
    }
    return folder;
}
} // namespace

WideText TextOfPath(const fs::path &path)
{
    return path.native();
}

fs::path PathOfText(WideView text)
{
    return text;
}

std::string ShownPath(const fs::path &path)
{
    return OneSafeLine(NameBytes(path));
}

std::string NameBytes(const fs::path &path)
{
    return Utf8FromText(path.native());
}

fs::path PathOfNameBytes(const std::string &bytes)
{
    return TextFromUtf8(bytes).value_or(WideText());
}

fs::path IdentityOf(const fs::path &file)
{
    std::error_code error;
    const fs::path whole = fs::absolute(file, error);
    WideText name = (FinalName(whole.parent_path()) / whole.filename()).native();
    CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
    return name;
}

bool IsHidden(const fs::path &entry)
{
    const DWORD attributes = GetFileAttributesW(entry.c_str());
    return (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_HIDDEN) != 0) ||
           entry.filename().native().starts_with(L'.');
}

std::string FileErrorWords(const std::error_code &error)
{
    // The category's own words are in the system's code page, not in UTF-8.
    return error.category() == std::system_category()
               ? SystemWords(HRESULT_FROM_WIN32(static_cast<DWORD>(error.value())))
               : error.message();
}
