#include "host/SettingsKey_posix.h"

#include "com/SafeText.h"
#include "host/PluginSettings.h"
#include "host/Profile.h"
#include "host/SystemWords.h"
#include "host/TextEncodings.h"

#include "platform/advapi32/RegistryStore.h"
#include "resources/resource.h"
#include "settings/OutputSize.h"
#include "settings/SettingsStore.h"
#include "terminal/TerminalText.h"

#include "com/HandleOwner.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace fs = std::filesystem;

namespace
{
// What lies in the store, whatever its type, in words; nothing if there is no value.
std::optional<std::string> ReadStored(HKEY key, const StoredSetting &setting)
{
    WCHAR text[512];
    DWORD type = 0;
    DWORD size = sizeof(text) - sizeof(WCHAR);
    const LSTATUS status =
        RegQueryValueExW(key, setting.Name.c_str(), nullptr, &type, reinterpret_cast<BYTE *>(text), &size);
    if (key == nullptr || (status != ERROR_SUCCESS && status != ERROR_MORE_DATA))
    {
        return std::nullopt;
    }
    if (status == ERROR_SUCCESS && type == REG_DWORD && size == sizeof(DWORD))
    {
        DWORD number = 0;
        std::memcpy(&number, text, sizeof(number));
        return std::to_string(number);
    }
    if (status == ERROR_SUCCESS && (type == REG_SZ || type == REG_EXPAND_SZ))
    {
        text[size / sizeof(WCHAR)] = 0;
        return '"' + Utf8FromText(text) + '"';
    }
    return std::to_string(size) + " bytes";
}

LocaleNumberFormat UserFormat()
{
    LocaleNumberFormat format;
    LoadLocaleFormat(format, false);
    return format;
}

std::string Pixels(UINT32 count)
{
    return std::to_string(count) + (count == 1 ? " pixel" : " pixels");
}

INT32 PixelsOf(WideView text, const LocaleNumberFormat &format)
{
    double dpi = 0;
    OutputSizeUnit unit = UNIT_PIXELS;
    return OutputSizeToPixels(text, dpi, unit, format);
}

// Without what counts for nothing in a size: a size may be written with it or without.
WideText Bare(WideText text, const LocaleNumberFormat &format)
{
    std::erase_if(text, [&](WCHAR unit) {
        return unit == u' ' || (!format.ThousandSeparator.empty() && unit == format.ThousandSeparator.front());
    });
    return text;
}

// A setting as the plug-in reads it, and as it lies in the store.
struct Reading
{
    std::string holds;
    std::optional<std::string> stored;
    bool isTaken = true; // as it is stored
    WideText sizeText;   // what the plug-in reads of a size
};

Reading Read(const SettingsReader &reader, HKEY key, const StoredSetting &setting)
{
    Reading reading;
    reading.stored = ReadStored(key, setting);
    if (setting.Type == REG_SZ)
    {
        LocaleNumberFormat format = UserFormat();
        reading.sizeText = reader.Text(setting.Name.c_str());
        const WideText normal = NormalizeOutputSize(reading.sizeText, IDS_SIZE_PRINT, format);
        reading.holds = Utf8FromText(normal);
        reading.isTaken = !reading.stored || Bare(reading.sizeText, format) == Bare(normal, format);
        return reading;
    }
    const UINT32 number = reader.Number(setting.Name.c_str());
    // The form of an upload gets these as they are; of the others the plug-in makes what it knows.
    const bool isSent = setting.Name.starts_with(TEXT("Is")) || setting.Largest == 2;
    const UINT32 taken = setting.Name == TEXT("JPEGMode") ? std::min(number, setting.Largest)
                         : isSent                         ? number
                                                          : number != 0;
    reading.holds = std::to_string(taken);
    reading.isTaken = !reading.stored || *reading.stored == reading.holds;
    return reading;
}

LSTATUS StoreOne(HKEY key, const SettingAssignment &change)
{
    const WCHAR *const name = change.setting->Name.c_str();
    if (std::holds_alternative<SettingQuestion>(change.value))
    {
        return ERROR_SUCCESS;
    }
    if (const auto *number = std::get_if<UINT32>(&change.value))
    {
        return RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE *>(number), sizeof(*number));
    }
    if (const auto *text = std::get_if<WideText>(&change.value))
    {
        return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text->c_str()),
                              static_cast<DWORD>((text->size() + 1) * sizeof(WCHAR)));
    }
    const LSTATUS status = RegDeleteValueW(key, name);
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

RegistryKeyOwner OpenKey(REGSAM access)
{
    RegistryKeyOwner key;
    RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, access, key.Put());
    return key;
}

std::string DescribeSetting(const StoredSetting &setting)
{
    const Reading reading = Read(SettingsReader(), OpenKey(KEY_READ).Get(), setting);
    std::string line = Utf8FromText(setting.Name) + "=" + reading.holds;
    line += !reading.stored ? " (default)" : reading.isTaken ? "" : " (stored: " + *reading.stored + ")";
    return OneSafeLine(line);
}
} // namespace

std::string ListSettings()
{
    size_t widest = 0;
    std::vector<std::pair<std::string, const StoredSetting *>> lines;
    for (const StoredSetting &setting : StoredSettings())
    {
        lines.emplace_back(DescribeSetting(setting), &setting);
        widest = std::max(widest, TerminalWidth(lines.back().first));
    }
    std::string list;
    for (const auto &[assignment, setting] : lines)
    {
        list += assignment + std::string(widest - TerminalWidth(assignment) + 2, ' ') +
                Utf8FromText(setting->Meaning) + "\n";
    }
    return list;
}

std::string DescribeChanges(const std::vector<SettingAssignment> &changes)
{
    std::string lines;
    for (const SettingAssignment &change : changes)
    {
        lines += DescribeSetting(*change.setting) + "\n";
    }
    return lines;
}

HRESULT StoreSettings(const std::vector<SettingAssignment> &changes)
{
    if (changes.empty())
    {
        return S_OK;
    }
    RegistryStoreBatch batch;
    RegistryKeyOwner key;
    LSTATUS status = RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, KEY_READ | KEY_WRITE, key.Put());
    for (size_t i = 0; status == ERROR_SUCCESS && i < changes.size(); ++i)
    {
        status = StoreOne(key.Get(), changes[i]);
    }
    return HRESULT_FROM_WIN32(status == ERROR_SUCCESS ? batch.Commit() : status);
}

std::vector<std::string> SizeWarnings()
{
    std::vector<std::string> warnings;
    const SettingsReader reader;
    const RegistryKeyOwner key = OpenKey(KEY_READ);
    const LocaleNumberFormat format = UserFormat();
    LocaleNumberFormat other = format;
    std::swap(other.DecimalSeparator, other.ThousandSeparator);
    for (const StoredSetting &setting : StoredSettings())
    {
        const Reading reading = setting.Type == REG_SZ ? Read(reader, key.Get(), setting) : Reading();
        if (reading.isTaken)
        {
            continue;
        }
        const auto described = [](INT32 pixels) {
            return pixels == 0 ? std::string("the full size") : Pixels(static_cast<UINT32>(pixels));
        };
        const std::string name = Utf8FromText(setting.Name);
        const INT32 here = PixelsOf(reading.sizeText, format);
        const INT32 there = PixelsOf(reading.sizeText, other);
        warnings.push_back(
            name + " is stored as " + reading.stored.value_or("") + " and means " + reading.holds +
            " here: " + described(here) +
            (here == there ? std::string()
                           : ". In a language with the other decimal separator it means " + described(there)) +
            ". Store it again with: halvora settings " + name + "=...");
    }
    return warnings;
}

std::optional<std::string> TooSmallSize()
{
    SettingsBlock block;
    LoadSettings(block);
    const std::pair<const char *, UINT32> sizes[] = {
        {"JPEGLongDimension", block.JPEGMode == SendProcessed ? block.JPEG.LongEdgePixels : 0},
        {"RAWLongDimension", block.RAW.LongEdgePixels}};
    for (const auto &[name, pixels] : sizes)
    {
        if (pixels != 0 && pixels < UINT32{SmallestUsualEdge})
        {
            return std::string(name) + " would make pictures at most " + Pixels(pixels) +
                   " long. Nothing was sent. Change it with halvora settings " + name +
                   "=..., or publish with --allow-small.";
        }
    }
    return std::nullopt;
}

SettingsForOneRun::SettingsForOneRun(const std::vector<SettingAssignment> &changes) : m_store(RegistryStorePath())
{
    std::string folder = (fs::temp_directory_path() / "halvora-XXXXXX").native();
    if (::mkdtemp(folder.data()) == nullptr)
    {
        throw ProfileError("No folder could be made in " + fs::temp_directory_path().native() +
                           " for the settings of this run. Check that it can be written to.");
    }
    m_folder = folder;
    std::error_code error;
    fs::copy_file(m_store, m_folder / "registry.reg", error); // not there: all settings have their defaults
    SetRegistryStorePath(m_folder / "registry.reg");
    HRESULT result = MakeSettingsKey();
    result = SUCCEEDED(result) ? StoreSettings(changes) : result;
    if (FAILED(result))
    {
        SetRegistryStorePath(m_store);
        fs::remove_all(m_folder, error);
        throw ProfileError("The settings of this run can't be kept in " + folder + ": " + SystemWords(result));
    }
}

SettingsForOneRun::~SettingsForOneRun()
{
    SetRegistryStorePath(m_store);
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}
