// The page "JPEG Settings": how JPEG files are uploaded.
#pragma once

#include "settings/ConversionControls.h"
#include "settings/SettingsPage.h"

class JpegPage final : public SettingsPage
{
public:
    UINT Template() const noexcept override;
    void Load(IPageControls &controls) override;
    void Click(IPageControls &controls, UINT id) override;
    void Save(IPageControls &controls) override;

private:
    void Take(IPageControls &controls);
    void ApplyRules(IPageControls &controls);

    UINT32 m_mode = SendAsIs; // until loaded
    ConversionControls m_conversion{TEXT("JPEG")};
};
