#include "settings/StoredSettings.h"

#include "resources/resource.h"

#include <algorithm>

namespace
{
constexpr ConversionSwitch Switches[] = {
    {TEXT("Minimize"), &ConversionSettings::Minimize, 1, IDC_MINIMIZE, 0, TEXT("further reduce the upload size")},
    {TEXT("WriteCopyright"), &ConversionSettings::WriteCopyright, 1, IDC_WRITE_COPYRIGHT, IDS_META_COPYRIGHT,
     TEXT("keep artist, copyright and comment")},
    {TEXT("WriteEXIF"), &ConversionSettings::WriteEXIF, 1, IDC_WRITE_EXIF, IDS_META_EXIF,
     TEXT("keep camera and shooting data")},
    {TEXT("WriteXMP"), &ConversionSettings::WriteXMP, 0, IDC_WRITE_XMP, IDS_META_RATING,
     TEXT("keep rating, label and urgency")},
    {TEXT("WriteGPS"), &ConversionSettings::WriteGPS, 1, IDC_WRITE_GPS, IDS_META_GPS, TEXT("keep position data")},
    {TEXT("WriteIPTC"), &ConversionSettings::WriteIPTC, 0, IDC_WRITE_IPTC, IDS_META_IPTC,
     TEXT("keep caption, title, keywords, location and usage rights")},
};

// The switches and the output size of one kind of file.
void AddConversion(std::vector<StoredSetting> &settings, const WideText &kind, const WideText &files)
{
    for (const ConversionSwitch &one : Switches)
    {
        settings.push_back({kind + one.Name, REG_DWORD, 1, one.Default, files + one.Meaning});
    }
    settings.push_back({kind + TEXT("LongDimension"), REG_SZ, 0, 0,
                        files + TEXT("maximum output size, such as Original, 1024 px, 8\" or 20 cm")});
}

std::vector<StoredSetting> AllSettings()
{
    std::vector<StoredSetting> settings = {
        {TEXT("JPEGMode"), REG_DWORD, 2, SendProcessed,
         TEXT("how JPEG files are sent: 0 as they are on disk, 1 pixels intact, metadata chosen, 2 processed")},
    };
    AddConversion(settings, TEXT("JPEG"), TEXT("JPEG files: "));
    AddConversion(settings, TEXT("RAW"), TEXT("RAW and TIFF files: "));
    settings.insert(
        settings.end(),
        {
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
        });
    return settings;
}
} // namespace

std::span<const ConversionSwitch> ConversionSwitches() noexcept
{
    return Switches;
}

const std::vector<StoredSetting> &StoredSettings()
{
    static const std::vector<StoredSetting> settings = AllSettings();
    return settings;
}

const StoredSetting *FindStoredSetting(WideView name)
{
    const auto found = std::ranges::find(StoredSettings(), name, &StoredSetting::Name);
    return found == StoredSettings().end() ? nullptr : &*found;
}
