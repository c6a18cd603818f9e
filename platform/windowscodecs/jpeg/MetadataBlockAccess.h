// Metadata blocks one by one, as the block reader and writer interfaces count them: one for each
// segment that would be written.
#pragma once

#include "com/ComPtr.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include <wincodec.h>
#include <wincodecsdk.h>

UINT CountBlocks(const MetadataBlocks &blocks);

// A reader that names the block's format and has one value, its bytes. Throws E_INVALIDARG for an
// index that isn't there.
ComPtr<IWICMetadataReader> MakeBlockReader(const MetadataBlocks &blocks, UINT index);
