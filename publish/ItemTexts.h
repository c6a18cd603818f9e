// The words that go with a picture: chosen from what the host read out of the file, and independent
// of which metadata groups stay inside the picture.
#pragma once

#include "com/BstrOwner.h"

#include "HostContract.h"

// Each may be absent (null), or present and empty.
struct ItemTexts
{
    BstrOwner Title;
    BstrOwner Description;
    BstrOwner Tags;
};

// Copies out of a record that the metadata reader has filled. Without a caption the title is the
// upload name; a caption that is there but empty stands. E_OUTOFMEMORY is thrown.
ItemTexts ChooseItemTexts(const ItemRecord &record, const WCHAR *uploadName);
