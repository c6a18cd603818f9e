// The page "Photos": what is told of a picture beside its pixels, who may see it, and how it is taken in.
#pragma once

#include "settings/SettingsPage.h"

class PhotosPage final : public SettingsPage
{
public:
    UINT Template() const noexcept override;
    void Load(IPageControls &controls) override;

    // With no choice of visibility, its three numbers stay as they are stored.
    void Save(IPageControls &controls) override;

private:
    void Show(IPageControls &controls);
    void Take(IPageControls &controls);

    struct Flag
    {
        UINT Id;
        const WCHAR *Setting;
        UINT32 PhotosPage::*Field;
    };
    static const Flag flags[4];

    // Not the defaults of an upload: until the page was saved once, it shows less than is sent.
    UINT32 m_asyncUpload = 0;
    UINT32 m_writeTitle = 0;
    UINT32 m_writeDescription = 0;
    UINT32 m_writeTags = 0;
    UINT32 m_visibilityIndex = 0;
};
