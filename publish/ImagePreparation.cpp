#include "publish/ImagePreparation.h"

#include "core/Hresult.h"

ComPtr<IStream> PrepareJpeg(IHalvoraImageMetadata *, const WCHAR *, const WCHAR *, const UploadOptions &,
                            ItemTexts &)
{
    ThrowHresult(E_NOTIMPL);
}
