#include "settings/SettingsStore.h"

#include "resources/resource.h"
#include "settings/OutputSize.h"

#include <algorithm>
#include <string>

namespace
{
ConversionSettings DefaultConversion() noexcept
{
    ConversionSettings conversion;
    for (const ConversionSwitch &one : ConversionSwitches())
    {
        conversion.*one.Member = one.Default;
    }
    return conversion;
}

void LoadConversion(const SettingsReader &reader, const WideText &kind, ConversionSettings &conversion,
                    WideText &longDimension)
{
    for (const ConversionSwitch &one : ConversionSwitches())
    {
        UINT32 &field = conversion.*one.Member;
        reader.ReadInto((kind + one.Name).c_str(), field);
        field = field != 0;
    }
    WCHAR size[OutputSizeCapacity] = {};
    reader.Text((kind + TEXT("LongDimension")).c_str()).copy(size, OutputSizeCapacity - 1);
    NormalizeOutputSize(size, OutputSizeCapacity, IDS_SIZE_PRINT);
    longDimension = size;

    OutputSizeUnit unit;
    conversion.LongEdgePixels = static_cast<UINT32>(OutputSizeToPixels(longDimension, conversion.PrintDpi, unit));
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

SettingsBlock::SettingsBlock()
    : JPEGMode(FindStoredSetting(TEXT("JPEGMode"))->Default), JPEG(DefaultConversion()), RAW(DefaultConversion())
{
}

UINT32 SettingsReader::Number(const WCHAR *name) const
{
    UINT32 value = FindStoredSetting(name)->Default;
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
    block.JPEGMode = std::min(block.JPEGMode, UINT32{SendProcessed});
    LoadConversion(reader, TEXT("JPEG"), block.JPEG, block.JPEGLongDimension);
    LoadConversion(reader, TEXT("RAW"), block.RAW, block.RAWLongDimension);
}
