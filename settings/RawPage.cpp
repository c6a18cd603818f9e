#include "settings/RawPage.h"

#include "resources/resource.h"

UINT RawPage::Template() const noexcept
{
    return IDD_RAW;
}

void RawPage::Load(IPageControls &controls)
{
    m_conversion.FillLists(controls);
    m_conversion.Load(SettingsReader());
    m_conversion.Show(controls);
    m_conversion.Take(controls);
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
