// The frame that the encoder writes. Order of calls: Initialize; size, resolution, format, profile
// and metadata in any order; WriteSource, which writes the file's head too; Commit. The order isn't checked.
//
// A JPEG frame of this component that is written without options goes over with its compressed
// data as it is, in its own coding whatever format was set; see ScanCopy.h. Any other source has to give rows of
// 24 bits, blue first, which are encoded at a quality of 0.9 and 4:2:0 where the options don't say otherwise.
#pragma once

#include "com/ComObject.h"
#include "platform/windowscodecs/jpeg/EncoderOptions.h"
#include "platform/windowscodecs/jpeg/JpegFrameDecode.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"
#include "platform/windowscodecs/jpeg/PixelCoding.h"

#include <wincodec.h>
#include <wincodecsdk.h>

class CJpegFrameEncode final
    : public UncalledOfFrameEncode<UncalledOfBlockWriter<ComObject<
          CJpegFrameEncode, IWICBitmapFrameEncode, Answers<IWICMetadataBlockWriter, IWICMetadataBlockReader>>>>
{
public:
    explicit CJpegFrameEncode(ComPtr<IStream> stream) : m_stream(std::move(stream)) {}

    STDMETHODIMP Initialize(IPropertyBag2 *options) noexcept override;
    STDMETHODIMP SetSize(UINT width, UINT height) noexcept override;
    STDMETHODIMP SetResolution(double x, double y) noexcept override;
    STDMETHODIMP SetPixelFormat(WICPixelFormatGUID *format) noexcept override;
    STDMETHODIMP SetColorContexts(UINT count, IWICColorContext **contexts) noexcept override;
    STDMETHODIMP WriteSource(IWICBitmapSource *source, WICRect *part) noexcept override;
    STDMETHODIMP Commit() noexcept override;
    STDMETHODIMP GetMetadataQueryWriter(IWICMetadataQueryWriter **writer) noexcept override;

    // Takes the blocks of a frame of this component; WINCODEC_ERR_UNSUPPORTEDOPERATION for others.
    STDMETHODIMP InitializeFromBlockReader(IWICMetadataBlockReader *reader) noexcept override;

private:
    std::vector<OutputSegment> Head(bool allowsJfif);
    void CopyIntact(const IJpegFrameSource &source);
    void EncodeSource(IWICBitmapSource *source);

    ComPtr<IStream> m_stream;
    EncoderOptions m_options;
    UINT m_width = 0;
    UINT m_height = 0;
    double m_dpiX = 0; // 0 when it isn't set
    double m_dpiY = 0;
    Bytes m_profile;
    MetadataBlocks m_metadata;
};
