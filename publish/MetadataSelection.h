// Decides which of a picture's metadata gets into the new JPEG. This is what keeps a position or a name that
// the user switched off from leaving the machine.
//
// The tags themselves are known to the host and to the imaging component; here it is decided which blocks of
// the source are copied and which groups the host writes. Where the pixels are kept, the blocks of the source
// are copied first, so that tags that nobody here knows survive; XMP and IPTC are then taken out whole, the
// groups that are switched off are blanked in the record, and the host writes all groups: a blank group
// clears its tags in the copied blocks. A processed picture starts without metadata, so there the host
// writes just the groups that are switched on.
#pragma once

#include "publish/UploadOptions.h"

#include "HostContract.h"

#include <windows.h>
#include <wincodec.h>

// At least one of the five groups is switched on.
bool WantAnyMetadata(const UploadOptions &options) noexcept;

// Blanks the groups that are switched off in the record.
void BlankDeselectedGroups(ItemRecord &record, const UploadOptions &options) noexcept;

// For a new file with the source's pixels: copies the source's blocks unless blocksDropped is set, and has
// the host write every group. Releases the record. Returns the result of the host's writing; other failures are
// thrown.
HRESULT SelectIntactMetadata(IHalvoraImageMetadata *metadata, IWICBitmapFrameDecode *source,
                             IWICBitmapFrameEncode *target, ItemRecord *record, const UploadOptions &options,
                             bool blocksDropped);

// For a new file of a processed picture: has the host write the groups that are switched on, and marks the
// picture as processed. Record and failures as above.
HRESULT SelectProcessedMetadata(IHalvoraImageMetadata *metadata, IWICBitmapFrameEncode *target, ItemRecord *record,
                                const UploadOptions &options);
