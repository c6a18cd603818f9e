#include "settings/SettingsStore.h"

#include "resources/resource.h"
#include "settings/OutputSize.h"
#include "settings/StoredSettings.h"

#include <algorithm>
#include <string>

namespace
{
constexpr UINT32 SendProcessed = 2;

struct FlagName
{
    const WCHAR *Name;
    UINT32 ConversionSettings::*Field;
};
constexpr FlagName FlagNames[] = {
    {TEXT("Minimize"), &ConversionSettings::Minimize},
    {TEXT("WriteCopyright"), &ConversionSettings::WriteCopyright},
    {TEXT("WriteEXIF"), &ConversionSettings::WriteEXIF},
    {TEXT("WriteXMP"), &ConversionSettings::WriteXMP},
    {TEXT("WriteGPS"), &ConversionSettings::WriteGPS},
    {TEXT("WriteIPTC"), &ConversionSettings::WriteIPTC},
};

void LoadFlags(const SettingsReader &reader, const WideText &kind, ConversionSettings &conversion)
{
    for (const FlagName &flag : FlagNames)
    {
        UINT32 &field = conversion.*flag.Field;
        reader.ReadInto((kind + flag.Name).c_str(), field);
        field = field != 0;
    }
}

void LoadSize(const SettingsReader &reader, const WCHAR *name, WideText &longDimension, UINT32 &longEdgePixels,
              double &printDpi)
{
    WCHAR size[OutputSizeCapacity] = {};
    reader.Text(name).copy(size, OutputSizeCapacity - 1);
    NormalizeOutputSize(size, OutputSizeCapacity, IDS_SIZE_PRINT);
    longDimension = size;

    OutputSizeUnit unit;
    longEdgePixels = static_cast<UINT32>(OutputSizeToPixels(longDimension, printDpi, unit));
}

RegistryKeyOwner OpenSettingsKey(REGSAM access) noexcept
{
    RegistryKeyOwner key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, access, key.Put()) != ERROR_SUCCESS)
    {
        return RegistryKeyOwner();
    }
    return key;
}
} // namespace

SettingsReader::SettingsReader() noexcept : m_key(OpenSettingsKey(KEY_READ)) {}

UINT32 SettingsReader::Number(const WCHAR *name) const noexcept
{
    const StoredSetting *setting = FindStoredSetting(name);
    UINT32 value = setting ? setting->Default : 0;
    ReadInto(name, value);
    return value;
}

void SettingsReader::ReadInto(const WCHAR *name, UINT32 &value) const noexcept
{
    if (!m_key)
    {
        return;
    }
    UINT32 stored = value;
    DWORD size = sizeof(stored);
    if (RegQueryValueExW(m_key.Get(), name, nullptr, nullptr, reinterpret_cast<BYTE *>(&stored), &size) ==
        ERROR_SUCCESS)
    {
        value = stored;
    }
}

WideText SettingsReader::Text(const WCHAR *name) const
{
    // One unit more than is read, since a stored text may lack its terminator.
    WCHAR buffer[OutputSizeCapacity + 1] = {};
    DWORD size = OutputSizeCapacity * sizeof(WCHAR);
    if (!m_key || RegQueryValueExW(m_key.Get(), name, nullptr, nullptr, reinterpret_cast<BYTE *>(buffer), &size) !=
                      ERROR_SUCCESS)
    {
        return {};
    }
    return buffer;
}

SettingsWriter::SettingsWriter() noexcept : m_key(OpenSettingsKey(KEY_WRITE)) {}

void SettingsWriter::Write(const WCHAR *name, UINT32 value) const noexcept
{
    RegSetValueExW(m_key.Get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE *>(&value), sizeof(value));
}

void SettingsWriter::Write(const WCHAR *name, const WideText &text) const noexcept
{
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR));
    RegSetValueExW(m_key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()), size);
}

void LoadSettings(SettingsBlock &block)
{
    const SettingsReader reader;
    if (!reader.IsOpen())
    {
        return;
    }
    reader.ReadInto(TEXT("JPEGMode"), block.JPEGMode);
    block.JPEGMode = std::min(block.JPEGMode, SendProcessed);
    LoadFlags(reader, TEXT("JPEG"), block.JPEG);
    LoadSize(reader, TEXT("JPEGLongDimension"), block.JPEGLongDimension, block.JPEGLongEdgePixels,
             block.JPEGPrintDpi);
    LoadFlags(reader, TEXT("RAW"), block.RAW);
    LoadSize(reader, TEXT("RAWLongDimension"), block.RAWLongDimension, block.RAWLongEdgePixels, block.RAWPrintDpi);
}
