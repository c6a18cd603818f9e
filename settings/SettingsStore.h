// The user's preferences. The registry key is the store: nothing is cached between reads, a value that
// is missing or doesn't fit reads as its default, and no failure of the registry is reported.
// No lock: a save that goes on beside a read may be seen half done, each value by itself whole.
#pragma once

#include "com/HandleOwner.h"
#include "com/WideText.h"

#include <windows.h>

// How pictures of one kind of source are made ready. Flags are 0 or 1.
struct ConversionSettings
{
    UINT32 Minimize = 1;
    UINT32 WriteCopyright = 1;
    UINT32 WriteEXIF = 1;
    UINT32 WriteXMP = 0;
    UINT32 WriteGPS = 1;
    UINT32 WriteIPTC = 0;
    UINT32 LongEdgePixels = 0; // 0: keep the size
    double PrintDpi = 0;
    WideText LongDimension; // display form of the maximum output size; empty until one was loaded
};

struct SettingsBlock
{
    UINT32 JPEGMode = 2; // 0 SendAsIs, 1 SendPixelsIntact, 2 SendProcessed
    ConversionSettings JPEG;
    ConversionSettings RAW; // RAW and TIFF files
};

// Fills the block from the store. Without the key the block stays as it is; a value that is missing
// leaves what its field held, but an output size is "Original" then. E_OUTOFMEMORY is thrown.
void LoadSettings(SettingsBlock &block);

// The settings key, opened for reading. A key that can't be opened is one without values.
class SettingsReader
{
public:
    SettingsReader() noexcept;

    bool IsOpen() const noexcept { return static_cast<bool>(m_key); }

    // The value as stored, or its default from the table of StoredSettings.h, where the name must be.
    UINT32 Number(const WCHAR *name) const noexcept;

    // Leaves value alone if there is no value of at most 4 bytes.
    void ReadInto(const WCHAR *name, UINT32 &value) const noexcept;

    // Empty if there is no value or one of more than 64 bytes.
    WideText Text(const WCHAR *name) const;

private:
    RegistryKeyOwner m_key;
};

// The settings key, opened for writing; it is never created. Each value stands by itself: one that can't
// be written doesn't keep the others from being written.
class SettingsWriter
{
public:
    SettingsWriter() noexcept;

    // Without an open key nothing may be written.
    bool IsOpen() const noexcept { return static_cast<bool>(m_key); }

    void Write(const WCHAR *name, UINT32 value) const noexcept;
    void Write(const WCHAR *name, const WideText &text) const noexcept;

private:
    RegistryKeyOwner m_key;
};
