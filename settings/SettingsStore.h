// The user's preferences. The registry key is the store: nothing is cached between reads, so that a change takes
// effect at the next read. A value that is missing or doesn't fit reads as its default, and failures of the
// registry are not reported. There is no lock: a read beside a save may see it half done, though each value is
// whole.
#pragma once

#include "com/HandleOwner.h"
#include "com/WideText.h"
#include "settings/StoredSettings.h"

#include <windows.h>

struct SettingsBlock
{
    // The defaults.
    SettingsBlock();

    UINT32 JPEGMode; // one of UploadMode
    ConversionSettings JPEG;
    WideText JPEGLongDimension; // display form of the maximum output size; empty until one was loaded

    // The same for RAW and TIFF files.
    ConversionSettings RAW;
    WideText RAWLongDimension;
};

// Fills the block from the store. Without the key the block stays as it is; a missing value leaves its field as
// it is, except that a missing output size becomes "Original". Throws E_OUTOFMEMORY.
void LoadSettings(SettingsBlock &block);

// The settings key, opened for reading. A key that can't be opened reads as one without values.
class SettingsReader
{
public:
    SettingsReader() noexcept;

    bool IsOpen() const noexcept { return static_cast<bool>(m_key); }

    // The value as stored, or its default from the table in StoredSettings.h, which must have the name.
    UINT32 Number(const WCHAR *name) const;

    // Leaves value alone if there is no value of at most 4 bytes.
    void ReadInto(const WCHAR *name, UINT32 &value) const noexcept;

    // Empty if there is no value or one of more than 64 bytes.
    WideText Text(const WCHAR *name) const;

private:
    RegistryKeyOwner m_key;
};

// The settings key, opened for writing; it is never created. A value that can't be written doesn't keep the
// others from being written.
class SettingsWriter
{
public:
    SettingsWriter() noexcept;

    // Write only if this is true.
    bool IsOpen() const noexcept { return static_cast<bool>(m_key); }

    void Write(const WCHAR *name, UINT32 value) const noexcept;
    void Write(const WCHAR *name, const WideText &text) const noexcept;

private:
    RegistryKeyOwner m_key;
};
