// The two kinds of bodies that requests have, and the types of the files in them.
#pragma once

#include "WebComponents.h"
#include "com/ComPtr.h"
#include "com/WideText.h"
#include "webclient/HttpTransport.h"

#include <objidl.h>

#include <chrono>
#include <optional>
#include <string>

// A short text in memory. Never sent twice: it may have left whole before its connection was lost.
class TextBody final : public RequestBody
{
public:
    explicit TextBody(std::string text) : m_text(std::move(text)) {}

    UINT64 Length() const override { return m_text.size(); }
    HRESULT Read(void *buffer, ULONG size, ULONG *read) override;
    HRESULT Rewind() override;
    HRESULT Report(UINT64) override { return S_OK; }

private:
    std::string m_text;
    size_t m_position = 0;
};

// Exactly length bytes of a stream from its present position on, read as they are sent. Reports the progress
// to the callback, which may be null: at once when all is sent, otherwise not more often than a user can see,
// and once a second while nothing moves, so that the callback can always end the transfer soon. A body that is
// sent once more reports again when it is further than it was.
class UploadBody final : public RequestBody
{
public:
    UploadBody(IStream *content, UINT32 length, IUploadProgressCallback *callback);

    UINT64 Length() const override { return m_length; }
    HRESULT Read(void *buffer, ULONG size, ULONG *read) override;
    HRESULT Rewind() override;
    HRESULT Report(UINT64 sent) override;

private:
    using Clock = std::chrono::steady_clock;

    ComPtr<IStream> m_content;
    std::optional<ULARGE_INTEGER> m_start; // nullopt: the stream can't tell, so it can't be rewound
    UINT32 m_length;
    UINT32 m_read = 0;
    ComPtr<IUploadProgressCallback> m_callback;
    std::optional<UINT64> m_reported;
    Clock::time_point m_reportTime;
};

// The media type of a file by its extension, in upper or lower case; "application/octet-stream" for an
// extension that isn't known, or none.
const WCHAR *MimeTypeOfFile(WideView fileName) noexcept;
