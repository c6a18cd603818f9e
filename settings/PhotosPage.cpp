#include "settings/PhotosPage.h"

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
