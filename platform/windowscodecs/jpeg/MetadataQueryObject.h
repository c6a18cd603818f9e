// The objects behind the metadata query interfaces. They work on blocks that belong to a frame, which
// they keep alive.
#pragma once

#include "com/ComPtr.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include <wincodec.h>

ComPtr<IWICMetadataQueryReader> MakeQueryReader(ComPtr<IUnknown> owner, MetadataBlocks &blocks);

// closed is looked at before each change; while it is true, changes answer WINCODEC_ERR_WRONGSTATE.
ComPtr<IWICMetadataQueryWriter> MakeQueryWriter(ComPtr<IUnknown> owner, MetadataBlocks &blocks,
                                                const bool &closed);
