#include "settings/OutputSizeList.h"

#include "core/NumberFormat.h"
#include "core/StringTable.h"

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
