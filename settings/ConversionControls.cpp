#include "settings/ConversionControls.h"

#include "core/NumberFormat.h"
#include "core/StringTable.h"
#include "resources/resource.h"
#include "settings/OutputSize.h"
#include "settings/SettingsStore.h"

const ConversionControls::Flag ConversionControls::Flags[] = {
    {IDC_MINIMIZE, TEXT("Minimize"), &ConversionControls::m_minimize},
    {IDC_WRITE_COPYRIGHT, TEXT("WriteCopyright"), &ConversionControls::m_writeCopyright},
    {IDC_WRITE_EXIF, TEXT("WriteEXIF"), &ConversionControls::m_writeEXIF},
    {IDC_WRITE_XMP, TEXT("WriteXMP"), &ConversionControls::m_writeXMP},
    {IDC_WRITE_GPS, TEXT("WriteGPS"), &ConversionControls::m_writeGPS},
    {IDC_WRITE_IPTC, TEXT("WriteIPTC"), &ConversionControls::m_writeIPTC},
};

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
    for (const Flag &flag : Flags)
    {
        reader.ReadInto(NameOf(flag.Setting).c_str(), this->*flag.Field);
    }
    m_longDimension = reader.Text(NameOf(TEXT("LongDimension")).c_str());
    NormalizeDimension();
}

void ConversionControls::Show(IPageControls &controls)
{
    for (const Flag &flag : Flags)
    {
        UINT32 &field = this->*flag.Field;
        if (field > LargestCheckState)
        {
            field = 0;
        }
        controls.SetCheck(flag.Id, field);
    }
    controls.SetText(IDC_OUTPUT_SIZE, m_longDimension);
}

void ConversionControls::Take(IPageControls &controls)
{
    for (const Flag &flag : Flags)
    {
        this->*flag.Field = controls.Check(flag.Id);
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
    for (const Flag &flag : Flags)
    {
        writer.Write(NameOf(flag.Setting).c_str(), this->*flag.Field);
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
