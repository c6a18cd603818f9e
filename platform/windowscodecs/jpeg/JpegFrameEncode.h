// The frame that the encoder writes. Order of calls: Initialize; size, resolution, format, profile
// and metadata in any order; pixels, either by WriteSource or by WritePixels; Commit. The file's head
// is written with the first pixels, so what comes after them is too late: WINCODEC_ERR_WRONGSTATE.
//
// A whole JPEG frame of this component that is written without options goes over with its compressed
// data as it is, in its own coding whatever format was set; see ScanCopy.h. Everything else is
// encoded anew, at a quality of 0.9 and 4:2:0 where the options don't say otherwise.
#pragma once

#include "com/ComObject.h"
#include "platform/windowscodecs/jpeg/EncoderOptions.h"
#include "platform/windowscodecs/jpeg/JpegFrameDecode.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"
#include "platform/windowscodecs/jpeg/PixelCoding.h"

#include <wincodec.h>
#include <wincodecsdk.h>

#include <memory>

class CJpegFrameEncode final : public ComObject<CJpegFrameEncode, IWICBitmapFrameEncode,
                                                Answers<IWICMetadataBlockWriter, IWICMetadataBlockReader>>
{
public:
    explicit CJpegFrameEncode(ComPtr<IStream> stream) : m_stream(std::move(stream)) {}

    STDMETHODIMP Initialize(IPropertyBag2 *options) noexcept override;
    STDMETHODIMP SetSize(UINT width, UINT height) noexcept override;
    STDMETHODIMP SetResolution(double x, double y) noexcept override;
    STDMETHODIMP SetPixelFormat(WICPixelFormatGUID *format) noexcept override;
    STDMETHODIMP SetColorContexts(UINT count, IWICColorContext **contexts) noexcept override;
    STDMETHODIMP SetPalette(IWICPalette *palette) noexcept override;
    STDMETHODIMP SetThumbnail(IWICBitmapSource *thumbnail) noexcept override;
    STDMETHODIMP WritePixels(UINT lines, UINT stride, UINT size, BYTE *pixels) noexcept override;
    STDMETHODIMP WriteSource(IWICBitmapSource *source, WICRect *part) noexcept override;
    STDMETHODIMP Commit() noexcept override;
    STDMETHODIMP GetMetadataQueryWriter(IWICMetadataQueryWriter **writer) noexcept override;

    STDMETHODIMP GetContainerFormat(GUID *format) noexcept override;
    STDMETHODIMP GetCount(UINT *count) noexcept override;
    STDMETHODIMP GetReaderByIndex(UINT index, IWICMetadataReader **reader) noexcept override;
    STDMETHODIMP GetEnumerator(IEnumUnknown **enumerator) noexcept override;

    // Takes the blocks of a frame of this component; WINCODEC_ERR_UNSUPPORTEDOPERATION for others.
    STDMETHODIMP InitializeFromBlockReader(IWICMetadataBlockReader *reader) noexcept override;
    STDMETHODIMP GetWriterByIndex(UINT index, IWICMetadataWriter **writer) noexcept override;
    STDMETHODIMP AddWriter(IWICMetadataWriter *writer) noexcept override;
    STDMETHODIMP SetWriterByIndex(UINT index, IWICMetadataWriter *writer) noexcept override;
    STDMETHODIMP RemoveWriterByIndex(UINT index) noexcept override;

    bool IsCommitted() const noexcept { return m_state == State::Committed; }

private:
    enum class State
    {
        Created,
        Setting,
        Writing,
        Complete,
        Committed
    };

    // WINCODEC_ERR_NOTINITIALIZED or WINCODEC_ERR_WRONGSTATE, thrown, unless settings may change.
    void RequireSetting() const;
    void BeginPixels();
    std::vector<OutputSegment> Head(bool allowsJfif);
    void CopyIntact(const IJpegFrameSource &source);
    void StartEncoding();
    void EncodeSource(IWICBitmapSource *source, const WICRect &part);
    void WriteConverted(REFWICPixelFormatGUID format, const BYTE *row);
    void CountRow();

    ComPtr<IStream> m_stream;
    State m_state = State::Created;
    bool m_closed = false; // the head is written
    EncoderOptions m_options;
    UINT m_width = 0;
    UINT m_height = 0;
    double m_dpiX = 0; // 0 when it isn't set
    double m_dpiY = 0;
    PixelLayout m_layout = PixelLayout::Bgr24;
    Bytes m_profile;
    MetadataBlocks m_metadata;
    std::unique_ptr<RowEncoder> m_rows;
    UINT m_rowsWritten = 0;
};
