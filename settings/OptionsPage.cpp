#include "settings/OptionsPage.h"

#include "resources/resource.h"
#include "settings/SettingsStore.h"

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
