#include "settings/ConversionControls.h"

#include "core/NumberFormat.h"
#include "core/StringTable.h"
#include "resources/resource.h"
#include "settings/OutputSize.h"

namespace
{
constexpr UINT32 LargestCheckState = 2;

// Adds the string of firstEntryId, unless that is 0, and the usual sizes, each followed by the string of unitId and
// with its pixels as item data.
void FillOutputSizeList(IPageControls &controls, UINT comboBoxId, UINT unitId, UINT firstEntryId)
{
    if (firstEntryId != 0)
    {
        controls.AddListEntry(comboBoxId, LoadStringOrPlaceholder(firstEntryId), std::nullopt);
    }
    const WideText unit = LoadStringOrPlaceholder(unitId);
    LocaleNumberFormat format;
    LoadLocaleFormat(format, true);
    for (const UINT32 pixels : {240, 320, 500, 800, 1024, 1600, 2048})
    {
        WCHAR digits[64] = {};
        FormatNumber(format, {.Signed = pixels}, NUMBER_SIGNED, 0, digits);
        controls.AddListEntry(comboBoxId, digits + unit, pixels);
    }
}
} // namespace

void ConversionControls::FillLists(IPageControls &controls)
{
    FillOutputSizeList(controls, IDC_OUTPUT_SIZE, IDS_SIZE_PIXELS_SUFFIX, IDS_SIZE_ORIGINAL);
}

void ConversionControls::Load(const SettingsReader &reader)
{
    for (const ConversionSwitch &one : ConversionSwitches())
    {
        reader.ReadInto(NameOf(one.Name).c_str(), m_conversion.*one.Member);
    }
    m_longDimension = reader.Text(NameOf(TEXT("LongDimension")).c_str());
    NormalizeDimension();
}

void ConversionControls::Show(IPageControls &controls)
{
    for (const ConversionSwitch &one : ConversionSwitches())
    {
        UINT32 &field = m_conversion.*one.Member;
        if (field > LargestCheckState)
        {
            field = 0;
        }
        controls.SetCheck(one.ControlId, field);
    }
    controls.SetText(IDC_OUTPUT_SIZE, m_longDimension);
}

void ConversionControls::Take(IPageControls &controls)
{
    for (const ConversionSwitch &one : ConversionSwitches())
    {
        m_conversion.*one.Member = controls.Check(one.ControlId);
    }
    m_longDimension = controls.Text(IDC_OUTPUT_SIZE);
    if (m_longDimension.size() >= OutputSizeCapacity)
    {
        m_longDimension.resize(OutputSizeCapacity - 1);
        controls.Beep();
        controls.Focus(IDC_OUTPUT_SIZE);
    }
}

void ConversionControls::Save(const SettingsWriter &writer)
{
    for (const ConversionSwitch &one : ConversionSwitches())
    {
        writer.Write(NameOf(one.Name).c_str(), m_conversion.*one.Member);
    }
    NormalizeDimension();
    writer.Write(NameOf(TEXT("LongDimension")).c_str(), m_longDimension);
}

void ConversionControls::NormalizeDimension()
{
    WCHAR buffer[OutputSizeCapacity] = {};
    m_longDimension.copy(buffer, OutputSizeCapacity - 1);
    NormalizeOutputSize(buffer, OutputSizeCapacity, IDS_SIZE_PRINT);
    m_longDimension = buffer;
}
