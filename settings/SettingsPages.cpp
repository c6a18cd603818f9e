#include "settings/SettingsPages.h"

#include "resources/resource.h"
#include "settings/SettingsStore.h"

#include <algorithm>
#include <iterator>

const PhotosPage::Flag PhotosPage::Flags[] = {
    {IDC_ASYNC_UPLOAD, TEXT("AsyncUpload"), &PhotosPage::m_asyncUpload},
    {IDC_WRITE_TITLE, TEXT("WriteTitle"), &PhotosPage::m_writeTitle},
    {IDC_WRITE_DESCRIPTION, TEXT("WriteDescription"), &PhotosPage::m_writeDescription},
    {IDC_WRITE_TAGS, TEXT("WriteTags"), &PhotosPage::m_writeTags},
};

namespace
{
// Who may see a published picture: one choice of five, stored as the three numbers that the service takes. They
// are sent as stored, also in combinations that the page doesn't offer.
struct VisibilityNumbers
{
    UINT32 IsPublic;
    UINT32 IsFriend;
    UINT32 IsFamily;
};

// Anyone, family and friends, friends, family, only the user: the order of the radio buttons.
constexpr VisibilityNumbers VisibilityChoices[] = {
    {1, 1, 1}, {0, 1, 1}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0},
};

// Any number other than 0 means yes; if IsPublic does, the other two are ignored.
UINT32 VisibilityOfNumbers(const VisibilityNumbers &numbers) noexcept
{
    if (numbers.IsPublic != 0)
    {
        return 0;
    }
    UINT32 index = 1;
    while (VisibilityChoices[index].IsFriend != (numbers.IsFriend != 0) ||
           VisibilityChoices[index].IsFamily != (numbers.IsFamily != 0))
    {
        ++index;
    }
    return index;
}

UINT32 LoadVisibility(const SettingsReader &reader)
{
    VisibilityNumbers numbers{reader.Number(TEXT("IsPublic")), 0, 0};
    if (numbers.IsPublic == 0)
    {
        numbers.IsFriend = reader.Number(TEXT("IsFriend"));
        numbers.IsFamily = reader.Number(TEXT("IsFamily"));
    }
    return VisibilityOfNumbers(numbers);
}
} // namespace

UINT PhotosPage::Template() const noexcept
{
    return IDD_PHOTOS;
}

void PhotosPage::Load(IPageControls &controls)
{
    const SettingsReader reader;
    if (reader.IsOpen())
    {
        for (const Flag &flag : Flags)
        {
            UINT32 &field = this->*flag.Field;
            reader.ReadInto(flag.Setting, field);
            field = std::min(field, UINT32{1});
        }
        m_visibilityIndex = LoadVisibility(reader);
    }
    Show(controls);
}

void PhotosPage::Save(IPageControls &controls)
{
    Take(controls);
    const SettingsWriter writer;
    if (!writer.IsOpen())
    {
        return;
    }
    for (const Flag &flag : Flags)
    {
        writer.Write(flag.Setting, this->*flag.Field);
    }
    if (m_visibilityIndex < std::size(VisibilityChoices))
    {
        const VisibilityNumbers &numbers = VisibilityChoices[m_visibilityIndex];
        writer.Write(TEXT("IsPublic"), numbers.IsPublic);
        writer.Write(TEXT("IsFriend"), numbers.IsFriend);
        writer.Write(TEXT("IsFamily"), numbers.IsFamily);
    }
}

void PhotosPage::Show(IPageControls &controls)
{
    for (const Flag &flag : Flags)
    {
        controls.SetCheck(flag.Id, this->*flag.Field);
    }
    controls.SetRadio(IDC_VISIBLE_TO_ANYONE, m_visibilityIndex);
}

void PhotosPage::Take(IPageControls &controls)
{
    for (const Flag &flag : Flags)
    {
        this->*flag.Field = controls.Check(flag.Id);
    }
    m_visibilityIndex = controls.Radio(IDC_VISIBLE_TO_ANYONE);
}

namespace
{
// A control and the smallest mode in which it is enabled.
struct EnableRule
{
    UINT Id;
    UINT32 FirstMode;
};
constexpr EnableRule Rules[] = {
    {IDC_MINIMIZE, SendProcessed},          {IDC_WRITE_COPYRIGHT, SendPixelsIntact},
    {IDC_WRITE_EXIF, SendPixelsIntact},     {IDC_WRITE_XMP, SendPixelsIntact},
    {IDC_WRITE_GPS, SendPixelsIntact},      {IDC_WRITE_IPTC, SendPixelsIntact},
    {IDC_OUTPUT_SIZE_LABEL, SendProcessed}, {IDC_OUTPUT_SIZE, SendProcessed},
    {IDC_OUTPUT_SIZE_NOTE, SendProcessed},
};
} // namespace

UINT JpegPage::Template() const noexcept
{
    return IDD_JPEG;
}

void JpegPage::Load(IPageControls &controls)
{
    m_conversion.FillLists(controls);
    const SettingsReader reader;
    m_mode = std::min(reader.Number(TEXT("JPEGMode")), UINT32{SendProcessed});
    m_conversion.Load(reader);
    controls.SetRadio(IDC_MODE_AS_IS, m_mode);
    m_conversion.Show(controls);
    // A control may not have taken a stored value; make the fields agree with what is shown.
    Take(controls);
    ApplyRules(controls);
}

void JpegPage::Click(IPageControls &controls, UINT id)
{
    if (id == IDC_MODE_AS_IS || id == IDC_MODE_PIXELS_INTACT || id == IDC_MODE_PROCESSED)
    {
        Take(controls);
        ApplyRules(controls);
    }
}

void JpegPage::Save(IPageControls &controls)
{
    Take(controls);
    ApplyRules(controls);
    const SettingsWriter writer;
    if (writer.IsOpen())
    {
        writer.Write(TEXT("JPEGMode"), m_mode);
        m_conversion.Save(writer);
    }
}

void JpegPage::Take(IPageControls &controls)
{
    m_mode = controls.Radio(IDC_MODE_AS_IS);
    m_conversion.Take(controls);
}

void JpegPage::ApplyRules(IPageControls &controls)
{
    for (const EnableRule &rule : Rules)
    {
        controls.Enable(rule.Id, m_mode >= rule.FirstMode && m_mode <= SendProcessed);
    }
}

UINT RawPage::Template() const noexcept
{
    return IDD_RAW;
}

void RawPage::Load(IPageControls &controls)
{
    m_conversion.FillLists(controls);
    m_conversion.Load(SettingsReader());
    m_conversion.Show(controls);
}

void RawPage::Save(IPageControls &controls)
{
    m_conversion.Take(controls);
    const SettingsWriter writer;
    if (writer.IsOpen())
    {
        m_conversion.Save(writer);
    }
}

const OptionsPage::Group OptionsPage::Groups[] = {
    {IDC_SAFETY_SAFE, TEXT("SafetyLevel"), &OptionsPage::m_safetyLevel},
    {IDC_CONTENT_PHOTOS, TEXT("ContentType"), &OptionsPage::m_contentType},
    {IDC_SEARCH_SHOW, TEXT("SearchVisibility"), &OptionsPage::m_searchVisibility},
};

UINT OptionsPage::Template() const noexcept
{
    return IDD_OPTIONS;
}

void OptionsPage::Load(IPageControls &controls)
{
    const SettingsReader reader;
    for (const Group &group : Groups)
    {
        UINT32 &field = this->*group.Field;
        field = reader.Number(group.Setting);
        // A stored value without a radio button is shown, and later saved, as the first.
        if (field > FindStoredSetting(group.Setting)->Largest)
        {
            field = 0;
        }
        controls.SetRadio(group.FirstId, field);
    }
}

void OptionsPage::Save(IPageControls &controls)
{
    for (const Group &group : Groups)
    {
        this->*group.Field = controls.Radio(group.FirstId);
    }
    const SettingsWriter writer;
    if (!writer.IsOpen())
    {
        return;
    }
    for (const Group &group : Groups)
    {
        writer.Write(group.Setting, this->*group.Field);
    }
}
