#include "host/SettingAssignment.h"

#include "host/TextEncodings.h"

#include "resources/resource.h"
#include "settings/OutputSize.h"

#include <charconv>

namespace
{
std::string Lower(std::string_view text)
{
    std::string lower(text);
    for (char &c : lower)
    {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
}

const StoredSetting *FindByName(std::string_view name)
{
    for (const StoredSetting &setting : StoredSettings())
    {
        if (Lower(Utf8FromText(setting.Name)) == Lower(name))
        {
            return &setting;
        }
    }
    return nullptr;
}

std::optional<UINT32> ParseNumber(const StoredSetting &setting, std::string_view text)
{
    const std::string word = Lower(text);
    if (setting.Largest == 1 && (word == "on" || word == "yes" || word == "true"))
    {
        return 1;
    }
    if (setting.Largest == 1 && (word == "off" || word == "no" || word == "false"))
    {
        return 0;
    }
    UINT32 number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number > setting.Largest)
    {
        return std::nullopt;
    }
    return number;
}

// Nothing if the text is no size; "Original" only for a text that asks for it.
std::optional<WideText> ParseSize(std::string_view text)
{
    auto wide = TextFromUtf8(text);
    if (!wide || wide->size() >= OutputSizeCapacity)
    {
        return std::nullopt;
    }
    LocaleNumberFormat format;
    if (!LoadLocaleFormat(format, false))
    {
        return std::nullopt;
    }
    WideText normal = NormalizeOutputSize(*wide, IDS_SIZE_PRINT, format);
    double dpi = 0;
    OutputSizeUnit unit = UNIT_PIXELS;
    const bool isFull = OutputSizeToPixels(normal, dpi, unit, format) == 0;
    return isFull && Lower(text) != "original" ? std::nullopt : std::optional(std::move(normal));
}
} // namespace

std::variant<SettingAssignment, std::string> ParseSettingAssignment(std::string_view text)
{
    const auto equals = text.find('=');
    if (equals == text.npos)
    {
        return "\"" + std::string(text) + "\" is no setting's change; write NAME=VALUE.";
    }
    const std::string name(text.substr(0, equals));
    const std::string_view value = text.substr(equals + 1);
    const StoredSetting *setting = FindByName(name);
    if (setting == nullptr)
    {
        return "There is no setting \"" + name + "\"; halvora settings lists them all.";
    }
    const std::string label = Utf8FromText(setting->Name);
    if (value.empty())
    {
        return SettingAssignment{setting, std::monostate()};
    }
    if (setting->Type == REG_DWORD)
    {
        if (const auto number = ParseNumber(*setting, value))
        {
            return SettingAssignment{setting, *number};
        }
        return label + " can't be \"" + std::string(value) + "\"; it takes a number from 0 to " +
               std::to_string(setting->Largest) + " (" + Utf8FromText(setting->Meaning) + ").";
    }
    if (auto size = ParseSize(value))
    {
        return SettingAssignment{setting, *std::move(size)};
    }
    return label + " can't be \"" + std::string(value) +
           "\"; it takes Original, pixels such as 1024, or a print size such as 8\" or 20cm.";
}
