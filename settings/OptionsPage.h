// The page "Options": safety level, content type and search visibility of every picture.
#pragma once

#include "settings/SettingsPage.h"

class OptionsPage final : public SettingsPage
{
public:
    UINT Template() const noexcept override;
    void Load(IPageControls &controls) override;
    void Save(IPageControls &controls) override;

private:
    struct Group
    {
        UINT FirstId;
        const WCHAR *Setting;
        UINT32 OptionsPage::*Field;
    };
    static const Group Groups[3];

    UINT32 m_safetyLevel = 0;
    UINT32 m_contentType = 0;
    UINT32 m_searchVisibility = 0;
};
