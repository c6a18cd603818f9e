// The controls that the pages "JPEG Settings" and "RAW/TIFF Settings" share, under the same identifiers: the
// metadata groups and the maximum output size.
#pragma once

#include "settings/PageControls.h"
#include "settings/SettingsStore.h"

class ConversionControls
{
public:
    // kind is the prefix of the setting names, "JPEG" or "RAW".
    explicit ConversionControls(const WCHAR *kind) noexcept : m_kind(kind) {}

    // Fills the combo box with "Original" and the usual sizes in pixels, in the user's number format; the pixels
    // are the entries' item data.
    void FillLists(IPageControls &controls);

    // Without a key the switches keep their defaults. A size that can't be read becomes "Original".
    void Load(const SettingsReader &reader);

    // Copies the switches and the size to the controls. A stored check state above 2 becomes 0.
    void Show(IPageControls &controls);

    // Copies the controls back. A size text that is too long is cut, with a beep and the focus on it.
    void Take(IPageControls &controls);

    // Writes the switches as they are and the size in its display form.
    void Save(const SettingsWriter &writer);

private:
    WideText NameOf(const WCHAR *setting) const { return WideText(m_kind) + setting; }
    void NormalizeDimension();

    const WCHAR *m_kind;
    ConversionSettings m_conversion = SettingsBlock().JPEG; // switches as stored; RAW has the same defaults
    WideText m_longDimension;                               // fits OutputSizeCapacity
};
