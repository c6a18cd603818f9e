#include "settings/StateLine.h"

#include "account/AccountRecord.h"
#include "core/FormatText.h"
#include "core/StringTable.h"
#include "core/TextPieces.h"
#include "resources/resource.h"
#include "settings/OutputSize.h"
#include "settings/SettingsStore.h"

#include <windows.h>
#include <shlwapi.h>

#include <algorithm>

namespace
{
// The words for the values 0, 1 and above; null if the value adds no word.
struct PhotoItem
{
    const WCHAR *Setting;
    const WCHAR *Words[3];
};
constexpr PhotoItem PhotoItems[] = {
    {TEXT("WriteTitle"), {nullptr, TEXT("title"), TEXT("title")}},
    {TEXT("WriteDescription"), {nullptr, TEXT("description"), TEXT("description")}},
    {TEXT("WriteTags"), {nullptr, TEXT("tags"), TEXT("tags")}},
    {TEXT("IsPublic"), {TEXT("private"), TEXT("public"), TEXT("public")}},
    {TEXT("SafetyLevel"), {TEXT("safe"), TEXT("moderate"), TEXT("restricted")}},
    {TEXT("ContentType"), {TEXT("photos"), TEXT("screenshots"), TEXT("other")}},
    {TEXT("SearchVisibility"), {TEXT("searchable"), TEXT("hidden from search"), TEXT("hidden from search")}},
};

WideText ListSeparator()
{
    return LoadStringOrPlaceholder(IDS_LIST_SEPARATOR);
}
} // namespace

WideText PhotoSummary()
{
    const SettingsReader reader;
    const WideText separator = ListSeparator();
    WideText summary;
    for (const PhotoItem &item : PhotoItems)
    {
        if (const WCHAR *word = item.Words[std::min(reader.Number(item.Setting), UINT32{2})])
        {
            summary.append(summary.empty() ? WideText() : separator).append(word);
        }
    }
    CapitalizeFirst(summary);
    return summary;
}

WideText MetadataSummary(const SettingsBlock &settings)
{
    const WideText separator = ListSeparator();
    WideText words;
    for (const ConversionSwitch &one : ConversionSwitches())
    {
        if (one.WordId != 0 && settings.JPEG.*one.Member != 0)
        {
            words.append(words.empty() ? TEXT(" ") : separator).append(LoadStringOrPlaceholder(one.WordId));
        }
    }
    if (words.empty())
    {
        return {};
    }
    return separator + LoadStringOrPlaceholder(IDS_META_SEND) + words + TEXT(" ") +
           LoadStringOrPlaceholder(IDS_META_DATA);
}

WideText SizeSummary(const SettingsBlock &settings)
{
    const WideText &size = settings.JPEGLongDimension;
    if (size.empty() || StrCmpIW(size.c_str(), LoadStringOrPlaceholder(IDS_SIZE_ORIGINAL).c_str()) == 0)
    {
        return {};
    }
    double dpi;
    OutputSizeUnit unit;
    OutputSizeToPixels(size, dpi, unit);
    const UINT verb = unit == UNIT_PIXELS ? IDS_SIZE_DOWNSIZE_TO : IDS_SIZE_DOWNSCALE_FOR;
    return ListSeparator() + LoadStringOrPlaceholder(verb) + TEXT(" ") + size;
}

WideText ModeText(const SettingsBlock &settings)
{
    switch (settings.JPEGMode)
    {
    case SendAsIs:
        return LoadStringOrPlaceholder(IDS_MODE_INTACT_FILES);
    case SendPixelsIntact:
        return LoadStringOrPlaceholder(IDS_MODE_INTACT_PIXELS) + MetadataSummary(settings);
    default:
        return LoadStringOrPlaceholder(IDS_MODE_RESAMPLE) + MetadataSummary(settings) + SizeSummary(settings);
    }
}

WideText PublishSummary(const SettingsBlock &settings)
{
    return PhotoSummary() + TEXT(". ") + ModeText(settings);
}

WideText ComposeDisplayState(const AccountRecord &account, SettingsBlock &settings)
{
    if (!account.IsAuthorized())
    {
        return LoadStringOrPlaceholder(IDS_STATE_NOT_AUTHORIZED);
    }
    if (account.AccountRefreshed && account.UploadLeftThisMonth == 0)
    {
        return LoadStringOrPlaceholder(IDS_STATE_NO_QUOTA);
    }
    LoadSettings(settings);
    return FormatText(LoadStringOrPlaceholder(IDS_STATE_SETTINGS_LINK).c_str(), PublishSummary(settings).c_str());
}
