// The sizes that are offered for the maximum output size.
#pragma once

#include "settings/PageControls.h"

// Appends to the list of a combo box the string of firstEntryId, unless that is 0, and the usual pixel
// sizes in the user's number format, each followed by the string of unitId and with its pixels as data.
void FillOutputSizeList(IPageControls &controls, UINT comboBoxId, UINT unitId, UINT firstEntryId);
