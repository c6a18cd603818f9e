// The texts of a picture at the service, chosen from the metadata that the host read. They don't depend on
// which metadata groups stay inside the uploaded picture.
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

// Copies them from a record that the host's reader has filled. Without a caption the title is the upload name;
// an empty caption gives an empty title. Without a description the EXIF comment takes its place.
// E_OUTOFMEMORY is thrown.
ItemTexts ChooseItemTexts(const ItemRecord &record, const WCHAR *uploadName);
