// The pages of the settings sheet that hold settings.
#pragma once

#include "settings/ConversionControls.h"
#include "settings/SettingsPage.h"

// The page "Photos": whether title, description and tags are sent, who may see a picture, and whether the
// service takes it in asynchronously.
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

// The page "JPEG Settings": how JPEG files are uploaded.
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

// The page "RAW/TIFF Settings": how files other than JPEG, GIF and PNG are converted.
class RawPage final : public SettingsPage
{
public:
    UINT Template() const noexcept override;
    void Load(IPageControls &controls) override;
    void Save(IPageControls &controls) override;

private:
    ConversionControls m_conversion{TEXT("RAW")};
};

// The page "Options": safety level, content type and search visibility of every picture.
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
