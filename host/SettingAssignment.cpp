#include "host/SettingAssignment.h"

#include "host/TextEncodings.h"

#include "com/AsciiText.h"
#include "core/StringTable.h"
#include "core/TextPieces.h"
#include "resources/resource.h"
#include "settings/OutputSize.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>

namespace
{
const StoredSetting *FindByName(std::string_view name)
{
    const auto &settings = StoredSettings();
    const auto found = std::ranges::find_if(settings, [&](const StoredSetting &setting) {
        return EqualsIgnoringCase(Utf8FromText(setting.Name), name);
    });
    return found != settings.end() ? &*found : nullptr;
}

// The number that a word stands for in a meaning such as "0 safe, 1 moderate, 2 restricted".
std::optional<UINT32> NumberOfWord(const StoredSetting &setting, const std::string &word)
{
    const std::string meaning = Utf8FromText(setting.Meaning) + ",";
    for (UINT32 number = 0; number <= setting.Largest; ++number)
    {
        if (meaning.find(std::to_string(number) + " " + word + ",") != meaning.npos)
        {
            return number;
        }
    }
    return std::nullopt;
}

std::optional<UINT32> ParseNumber(const StoredSetting &setting, std::string_view text)
{
    const std::string word = LowerAscii(text);
    if (const auto number = NumberOfWord(setting, word))
    {
        return number;
    }
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

constexpr WideView Digits = TEXT("0123456789");

// Groups of three digits; in India, above the last one, of two.
bool IsGrouped(WideView whole, WCHAR separator)
{
    size_t end = whole.size();
    for (size_t at = whole.rfind(separator); at != whole.npos; at = whole.rfind(separator, at - 1))
    {
        const size_t length = end - at - 1;
        if (at == 0 || (length != 3 && (length != 2 || end == whole.size())))
        {
            return false;
        }
        end = at;
    }
    return true;
}

bool IsOneOf(const std::string &word, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

// The plug-in reads as much of a size as it can and passes over the rest. Here that is a fault, in words; empty
// if every character counts. text has no blanks.
std::string FaultOfSize(WideView text, const LocaleNumberFormat &format)
{
    const std::string thousands = Utf8FromText(format.ThousandSeparator.substr(0, 1));
    WideText ofWhole(Digits);
    ofWhole += format.ThousandSeparator;
    const WideView whole = text.substr(0, text.find_first_not_of(ofWhole));
    WideView rest = text.substr(whole.size());
    WideView fraction;
    if (rest.starts_with(format.DecimalSeparator))
    {
        rest.remove_prefix(format.DecimalSeparator.size());
        fraction = rest.substr(0, rest.find_first_not_of(Digits));
        rest.remove_prefix(fraction.size());
    }
    if (!thousands.empty() && !IsGrouped(whole, format.ThousandSeparator.front()))
    {
        return "\"" + thousands + "\" separates thousands here, and \"" + Utf8FromText(format.DecimalSeparator) +
               "\" decimals";
    }
    std::string unit = LowerAscii(Utf8FromText(rest));
    const bool isPixels = IsOneOf(unit, {"", "px", "pix", "pixel", "pixels"});
    // The plug-in's own form has a word behind a print size.
    const std::string print = LowerAscii(Utf8FromText(LoadStringOrPlaceholder(IDS_SIZE_PRINT)));
    unit.resize(unit.size() - (unit.ends_with(print) ? print.size() : 0));
    if (!isPixels && !IsOneOf(unit, {"\"", "in", "inch", "inches", "cm"}))
    {
        return "\"" + Utf8FromText(rest) + "\" would not count";
    }
    return isPixels && fraction.find_first_not_of(u'0') != fraction.npos ? "there are no parts of pixels" : "";
}

// The plug-in's form of the size, which it reads back as the same; or what is wrong with the text, which may be
// empty.
std::variant<WideText, std::string> ParseSize(std::string_view text)
{
    auto wide = TextFromUtf8(text);
    LocaleNumberFormat format;
    if (!wide || !LoadLocaleFormat(format, false))
    {
        return "";
    }
    std::erase_if(*wide, IsWhiteSpace);
    const bool isOriginal = EqualsIgnoringCase(Utf8FromText(*wide), "original");
    if (!isOriginal && (wide->size() >= OutputSizeCapacity || Digits.find((*wide + u' ').front()) == Digits.npos))
    {
        return "";
    }
    if (const std::string fault = isOriginal ? std::string() : FaultOfSize(*wide, format); !fault.empty())
    {
        return fault;
    }
    WideText normal = NormalizeOutputSize(*wide, IDS_SIZE_PRINT, format);
    double dpi = 0;
    OutputSizeUnit unit = UNIT_PIXELS;
    if (normal.size() >= OutputSizeCapacity)
    {
        return "it is too large";
    }
    if (!isOriginal && (OutputSizeToPixels(normal, dpi, unit, format) == 0 ||
                        NormalizeOutputSize(normal, IDS_SIZE_PRINT, format) != normal))
    {
        return "it is too small";
    }
    return normal;
}
} // namespace

std::variant<SettingAssignment, std::string> ParseSettingAssignment(std::string_view text)
{
    const auto equals = text.find('=');
    const std::string name(text.substr(0, equals));
    const StoredSetting *setting = FindByName(name);
    if (setting == nullptr)
    {
        return "There is no setting \"" + name + "\"; halvora settings lists them all.";
    }
    if (equals == text.npos)
    {
        return SettingAssignment{setting, SettingQuestion()};
    }
    const std::string_view value = text.substr(equals + 1);
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
        return label + " can't be \"" + std::string(value) + "\"; it takes " +
               (setting->Largest == 1 ? "1 or 0, yes or no"
                                      : "a number from 0 to " + std::to_string(setting->Largest)) +
               " (" + Utf8FromText(setting->Meaning) + ").";
    }
    auto size = ParseSize(value);
    if (const auto *fault = std::get_if<std::string>(&size))
    {
        return label + " can't be \"" + std::string(value) + "\"" + (fault->empty() ? "" : ": ") + *fault +
               "; it takes Original, pixels such as 1024, or a print size such as 8\" or 20cm.";
    }
    return SettingAssignment{setting, std::get<WideText>(std::move(size))};
}

std::vector<SettingAssignment> ParseSettingAssignments(const std::vector<std::string> &texts,
                                                       std::vector<std::string> &faults)
{
    std::vector<SettingAssignment> changes;
    for (const std::string &text : texts)
    {
        auto parsed = ParseSettingAssignment(text);
        if (auto *const fault = std::get_if<std::string>(&parsed))
        {
            faults.push_back(std::move(*fault));
        }
        else
        {
            changes.push_back(std::get<SettingAssignment>(std::move(parsed)));
        }
    }
    return changes;
}
