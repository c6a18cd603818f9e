// The page "Photos": whether title, description and tags are sent, who may see a picture, and whether the
// service takes it in asynchronously.
#pragma once

#include "settings/SettingsPage.h"

class PhotosPage final : public SettingsPage
{
public:
    UINT Template() const noexcept override;
    void Load(IPageControls &controls) override;

    // If no radio button of the visibility is checked, its three stored numbers stay as they are.
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
    static const Flag Flags[4];

    // These differ from the defaults of an upload, which sends title, description and tags until this page
    // has been saved once.
    UINT32 m_asyncUpload = 0;
    UINT32 m_writeTitle = 0;
    UINT32 m_writeDescription = 0;
    UINT32 m_writeTags = 0;
    UINT32 m_visibilityIndex = 0;
};
