// The one frame of a JPEG file.
#pragma once

#include "com/ComObject.h"
#include "jpegdata/CodedData.h"
#include "platform/windowscodecs/UncalledMethods.h"
#include "platform/windowscodecs/jpeg/JpegStructure.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include <wincodec.h>
#include <wincodecsdk.h>

#include <memory>
#include <mutex>

// What the encoder asks of a source to know that it is one of this component's frames. Never leaves
// the component.
struct IJpegFrameSource : public IUnknown
{
    virtual const JpegStructure &Structure() const noexcept = 0;
    virtual StreamBytes OpenBytes() const = 0;

    // What of the coded data belongs to no block, as ranges from where the picture begins. Throws
    // WINCODEC_ERR_BADIMAGE if the picture isn't whole, and what TrialDecoder throws.
    virtual std::vector<ByteRange> CheckPixels() const = 0;

protected:
    ~IJpegFrameSource() = default;
};
__CRT_UUID_DECL(IJpegFrameSource, 0x5f0c8e7a, 0x2f3d, 0x4b0b, 0x9a, 0x61, 0x6c, 0x1d, 0x38, 0x52, 0xe4, 0x97)

class CJpegFrameDecode final
    : public UncalledOfFrameDecode<
          UncalledOfBlockReader<ComObject<CJpegFrameDecode, Answers<IWICBitmapFrameDecode, IWICBitmapSource>,
                                          IWICMetadataBlockReader, IJpegFrameSource>>>
{
public:
    // The picture begins at base in the stream, which the frame keeps.
    CJpegFrameDecode(ComPtr<IStream> stream, ULONGLONG base, JpegStructure structure);

    STDMETHODIMP GetSize(UINT *width, UINT *height) noexcept override;

    // The EXIF block's, which a camera or an editor meant; else the JFIF header's, where writers that know of no
    // resolution leave a 72; else 96, on the axis of fewer pixels where JFIF tells their proportions alone.
    STDMETHODIMP GetResolution(double *x, double *y) noexcept override;
    STDMETHODIMP GetMetadataQueryReader(IWICMetadataQueryReader **reader) noexcept override;
    STDMETHODIMP GetColorContexts(UINT count, IWICColorContext **contexts, UINT *actual) noexcept override;

    const JpegStructure &Structure() const noexcept override { return m_structure; }
    StreamBytes OpenBytes() const override { return StreamBytes(m_stream, m_base); }
    std::vector<ByteRange> CheckPixels() const override;

private:
    MetadataBlocks &Metadata();

    ComPtr<IStream> m_stream;
    ULONGLONG m_base;
    JpegStructure m_structure;
    std::mutex m_mutex;
    std::unique_ptr<MetadataBlocks> m_metadata; // once asked for
};
