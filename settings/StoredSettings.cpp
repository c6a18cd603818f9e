#include "settings/StoredSettings.h"

#include <algorithm>

namespace
{
constexpr StoredSetting Settings[] = {
    {TEXT("JPEGMode"), REG_DWORD, 2, 2,
     TEXT("how JPEG files are sent: 0 as they are on disk, 1 pixels intact, metadata chosen, 2 processed")},
    {TEXT("JPEGMinimize"), REG_DWORD, 1, 1, TEXT("JPEG files: further reduce the upload size")},
    {TEXT("JPEGWriteCopyright"), REG_DWORD, 1, 1, TEXT("JPEG files: keep artist, copyright and comment")},
    {TEXT("JPEGWriteEXIF"), REG_DWORD, 1, 1, TEXT("JPEG files: keep camera and shooting data")},
    {TEXT("JPEGWriteXMP"), REG_DWORD, 1, 0, TEXT("JPEG files: keep rating, label and urgency")},
    {TEXT("JPEGWriteGPS"), REG_DWORD, 1, 1, TEXT("JPEG files: keep position data")},
    {TEXT("JPEGWriteIPTC"), REG_DWORD, 1, 0,
     TEXT("JPEG files: keep caption, title, keywords, location and usage rights")},
    {TEXT("JPEGLongDimension"), REG_SZ, 0, 0,
     TEXT("JPEG files: maximum output size, such as Original, 1024 px, 8\" or 20 cm")},
    {TEXT("RAWMinimize"), REG_DWORD, 1, 1, TEXT("RAW and TIFF files: further reduce the upload size")},
    {TEXT("RAWWriteCopyright"), REG_DWORD, 1, 1, TEXT("RAW and TIFF files: keep artist, copyright and comment")},
    {TEXT("RAWWriteEXIF"), REG_DWORD, 1, 1, TEXT("RAW and TIFF files: keep camera and shooting data")},
    {TEXT("RAWWriteXMP"), REG_DWORD, 1, 0, TEXT("RAW and TIFF files: keep rating, label and urgency")},
    {TEXT("RAWWriteGPS"), REG_DWORD, 1, 1, TEXT("RAW and TIFF files: keep position data")},
    {TEXT("RAWWriteIPTC"), REG_DWORD, 1, 0,
     TEXT("RAW and TIFF files: keep caption, title, keywords, location and usage rights")},
    {TEXT("RAWLongDimension"), REG_SZ, 0, 0,
     TEXT("RAW and TIFF files: maximum output size, such as Original, 1024 px, 8\" or 20 cm")},
    {TEXT("AsyncUpload"), REG_DWORD, 1, 0, TEXT("ask the service to take pictures in asynchronously")},
    {TEXT("WriteTitle"), REG_DWORD, 1, 1, TEXT("send the picture's title")},
    {TEXT("WriteDescription"), REG_DWORD, 1, 1, TEXT("send the picture's description")},
    {TEXT("WriteTags"), REG_DWORD, 1, 1, TEXT("send the picture's keywords as tags")},
    {TEXT("IsPublic"), REG_DWORD, 1, 1, TEXT("anyone may see the picture")},
    {TEXT("IsFriend"), REG_DWORD, 1, 0, TEXT("friends may see the picture")},
    {TEXT("IsFamily"), REG_DWORD, 1, 0, TEXT("family may see the picture")},
    {TEXT("SafetyLevel"), REG_DWORD, 2, 0, TEXT("0 safe, 1 moderate, 2 restricted")},
    {TEXT("ContentType"), REG_DWORD, 2, 0, TEXT("0 photos, 1 screenshots, 2 other")},
    {TEXT("SearchVisibility"), REG_DWORD, 1, 0, TEXT("0 show in public searches, 1 hide from them")},
};
} // namespace

std::span<const StoredSetting> StoredSettings() noexcept
{
    return Settings;
}

const StoredSetting *FindStoredSetting(WideView name) noexcept
{
    const auto found = std::ranges::find(Settings, name, [](const StoredSetting &s) { return WideView(s.Name); });
    return found == std::end(Settings) ? nullptr : found;
}
