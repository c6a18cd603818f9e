// The page "RAW/TIFF Settings": how files other than JPEG, GIF and PNG are converted.
#pragma once

#include "settings/ConversionControls.h"
#include "settings/SettingsPage.h"

class RawPage final : public SettingsPage
{
public:
    UINT Template() const noexcept override;
    void Load(IPageControls &controls) override;
    void Save(IPageControls &controls) override;

private:
    ConversionControls m_conversion{TEXT("RAW")};
};
