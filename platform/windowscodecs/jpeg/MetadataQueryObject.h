// The objects behind the metadata query interfaces. They work on blocks that belong to a frame, which
// they keep alive.
#pragma once

#include "com/ComPtr.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include <wincodec.h>

ComPtr<IWICMetadataQueryReader> MakeQueryReader(ComPtr<IUnknown> owner, MetadataBlocks &blocks);

ComPtr<IWICMetadataQueryWriter> MakeQueryWriter(ComPtr<IUnknown> owner, MetadataBlocks &blocks);
