#include "settings/JpegPage.h"

#include "resources/resource.h"

#include <algorithm>

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
