// What the pages for JPEG files and for RAW and TIFF files have in common: the choice of metadata and the
// maximum output size, under the same identifiers.
#pragma once

#include "settings/PageControls.h"

class SettingsReader;
class SettingsWriter;

class ConversionControls
{
public:
    // kind begins the names of the settings: "JPEG" or "RAW".
    explicit ConversionControls(const WCHAR *kind) noexcept : m_kind(kind) {}

    // The sizes that the combo box offers, in the user's number format.
    void FillLists(IPageControls &controls);

    // Without a key the fields keep their defaults. A size that makes no sense is "Original" afterwards.
    void Load(const SettingsReader &reader);

    // Fields to controls. A check state that no box has is clear.
    void Show(IPageControls &controls);

    // Controls to fields. A size text that is too long is cut, with a beep and the focus on it.
    void Take(IPageControls &controls);

    // Writes the flags as they are and the size in its display form.
    void Save(const SettingsWriter &writer);

private:
    struct Flag
    {
        UINT Id;
        const WCHAR *Setting;
        UINT32 ConversionControls::*Field;
    };
    static const Flag flags[6];

    WideText NameOf(const WCHAR *setting) const { return WideText(m_kind) + setting; }
    void NormalizeDimension();

    const WCHAR *m_kind;
    UINT32 m_minimize = 1;
    UINT32 m_writeCopyright = 1;
    UINT32 m_writeEXIF = 1;
    UINT32 m_writeXMP = 0;
    UINT32 m_writeGPS = 1;
    UINT32 m_writeIPTC = 0;
    WideText m_longDimension; // fits OutputSizeCapacity
};
