#include "webclient/RequestBodies.h"

#include "com/AsciiText.h"

#include <algorithm>
#include <cstring>

namespace
{
struct MediaType
{
    const WCHAR *extension;
    const WCHAR *mimeType;
};

constexpr MediaType MediaTypes[] = {
    {TEXT("jpg"), TEXT("image/jpeg")},  {TEXT("jpeg"), TEXT("image/jpeg")}, {TEXT("jpe"), TEXT("image/jpeg")},
    {TEXT("jfif"), TEXT("image/jpeg")}, {TEXT("exif"), TEXT("image/jpeg")}, {TEXT("png"), TEXT("image/png")},
    {TEXT("gif"), TEXT("image/gif")},   {TEXT("tif"), TEXT("image/tiff")},  {TEXT("tiff"), TEXT("image/tiff")},
    {TEXT("webp"), TEXT("image/webp")}, {TEXT("bmp"), TEXT("image/bmp")},   {TEXT("heic"), TEXT("image/heic")},
    {TEXT("heif"), TEXT("image/heif")}, {TEXT("avif"), TEXT("image/avif")}, {TEXT("mov"), TEXT("video/quicktime")},
    {TEXT("mp4"), TEXT("video/mp4")},   {TEXT("m4v"), TEXT("video/mp4")},   {TEXT("avi"), TEXT("video/x-msvideo")},
};
} // namespace

HRESULT TextBody::Read(void *buffer, ULONG size, ULONG *read)
{
    *read = static_cast<ULONG>(std::min<size_t>(size, m_text.size() - m_position));
    std::memcpy(buffer, m_text.data() + m_position, *read);
    m_position += *read;
    return S_OK;
}

HRESULT TextBody::Rewind()
{
    m_position = 0;
    return S_OK;
}

UploadBody::UploadBody(IStream *content, UINT32 length, IUploadProgressCallback *callback)
    : m_content(content), m_length(length), m_callback(callback)
{
    ULARGE_INTEGER position{};
    if (SUCCEEDED(content->Seek(LARGE_INTEGER{}, STREAM_SEEK_CUR, &position)))
    {
        m_start = position;
    }
}

HRESULT UploadBody::Read(void *buffer, ULONG size, ULONG *read)
{
    *read = 0;
    const HRESULT result = m_content->Read(buffer, std::min<ULONG>(size, m_length - m_read), read);
    m_read += *read;
    // Bytes that were read before a failure are of no use: the rest can't follow.
    if (FAILED(result))
    {
        return result;
    }
    return *read > 0 ? S_OK : HRESULT_FROM_WIN32(ERROR_HANDLE_EOF);
}

HRESULT UploadBody::Rewind()
{
    if (!m_start)
    {
        return STG_E_INVALIDFUNCTION;
    }
    LARGE_INTEGER start{};
    start.QuadPart = static_cast<LONGLONG>(m_start->QuadPart);
    const HRESULT result = m_content->Seek(start, STREAM_SEEK_SET, nullptr);
    m_read = SUCCEEDED(result) ? 0 : m_read;
    return result;
}

HRESULT UploadBody::Report(UINT64 sent)
{
    constexpr auto leastInterval = std::chrono::milliseconds(10);
    constexpr auto heartbeat = std::chrono::milliseconds(900);
    if (!m_callback || m_length == 0)
    {
        return S_OK;
    }
    const auto now = Clock::now();
    sent = std::max(sent, m_reported.value_or(0));
    const bool isNews = m_reported != sent;
    const auto age = now - m_reportTime;
    const bool isDue = !m_reported || (isNews && (sent == m_length || age >= leastInterval)) || age >= heartbeat;
    if (!isDue)
    {
        return S_OK;
    }
    m_reported = sent;
    m_reportTime = now;
    return m_callback->OnUploadProgress(UPLOAD_BYTES, m_length, static_cast<UINT32>(sent));
}

const WCHAR *MimeTypeOfFile(WideView fileName) noexcept
{
    const size_t dot = std::min(fileName.find_last_of(TEXT("./\\")), fileName.size());
    const auto *const type = std::ranges::find_if(MediaTypes, [&](const MediaType &each) {
        return fileName.substr(dot).starts_with('.') &&
               EqualsIgnoringCase(fileName.substr(dot + 1), each.extension);
    });
    return type != std::end(MediaTypes) ? type->mimeType : TEXT("application/octet-stream");
}
