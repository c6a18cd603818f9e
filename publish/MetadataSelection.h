// What of a picture's metadata goes into the new JPEG. Host and encoder know the tags; here it is decided
// which blocks of the source are copied, and which groups the host writes or clears.
#pragma once

#include "publish/UploadOptions.h"

#include "HostContract.h"

#include <windows.h>
#include <wincodec.h>

// At least one of the five groups is switched on.
bool WantsAnyMetadata(const UploadOptions &options) noexcept;

// Takes out of the record what it holds of the groups that are switched off.
void BlankDeselectedGroups(ItemRecord &record, const UploadOptions &options) noexcept;

// For a new file with the source's pixels: copies the source's blocks if copyBlocks says so, and has the
// host write every group, those that are switched off as blank ones, so that a copied block keeps nothing
// of them. The record is released. Returns the outcome of the host's writing; other failures are thrown.
HRESULT SelectIntactMetadata(IHalvoraImageMetadata *metadata, IWICBitmapFrameDecode *source,
                             IWICBitmapFrameEncode *target, ItemRecord *record, const UploadOptions &options,
                             bool copyBlocks);

// For a new file of a processed picture, which begins without metadata: has the host write the groups that
// are switched on, and marks the picture as processed. Record and failures as above.
HRESULT SelectProcessedMetadata(IHalvoraImageMetadata *metadata, IWICBitmapFrameEncode *target, ItemRecord *record,
                                const UploadOptions &options);
