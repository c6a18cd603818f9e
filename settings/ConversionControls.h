// The controls that the pages "JPEG Settings" and "RAW/TIFF Settings" share, under the same identifiers: the
// metadata groups and the maximum output size.
#pragma once

#include "settings/PageControls.h"

class SettingsReader;
class SettingsWriter;

class ConversionControls
{
public:
    // kind is the prefix of the setting names, "JPEG" or "RAW".
    explicit ConversionControls(const WCHAR *kind) noexcept : m_kind(kind) {}

    // Fills the combo box with "Original" and the usual sizes in pixels, in the user's number format; the pixels
    // are the entries' item data.
    void FillLists(IPageControls &controls);

    // Without a key the fields keep their defaults. A size that can't be read becomes "Original".
    void Load(const SettingsReader &reader);

    // Copies the fields to the controls. A stored check state above 2 becomes 0.
    void Show(IPageControls &controls);

    // Copies the controls to the fields. A size text that is too long is cut, with a beep and the focus on it.
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
    static const Flag Flags[6];

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
