// The frame that the encoder writes. Order of calls: Initialize; size, resolution, format, profile
// and metadata in any order; WriteSource; Commit. The file's head is written with the first pixels, so what comes
// after them is too late: WINCODEC_ERR_WRONGSTATE.
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

    bool IsCommitted() const noexcept { return m_state == State::Committed; }

private:
    enum class State
    {
        Created,
        Setting,
        Writing, // or failed at it
        Complete,
        Committed
    };

    // WINCODEC_ERR_NOTINITIALIZED or WINCODEC_ERR_WRONGSTATE, thrown, unless settings may change.
    void RequireSetting() const;
    std::vector<OutputSegment> Head(bool allowsJfif);
    void CopyIntact(const IJpegFrameSource &source);
    void EncodeSource(IWICBitmapSource *source);

    ComPtr<IStream> m_stream;
    State m_state = State::Created;
    bool m_closed = false; // the head is written
    EncoderOptions m_options;
    UINT m_width = 0;
    UINT m_height = 0;
    double m_dpiX = 0; // 0 when it isn't set
    double m_dpiY = 0;
    Bytes m_profile;
    MetadataBlocks m_metadata;
};
