// The two kinds of bodies that requests have.
#pragma once

#include "WebComponents.h"
#include "com/ComPtr.h"
#include "webclient/HttpTransport.h"

#include <objidl.h>

#include <chrono>
#include <optional>
#include <string>

// A short text in memory.
class TextBody final : public RequestBody
{
public:
    explicit TextBody(std::string text) : m_text(std::move(text)) {}

    UINT64 Length() const override { return m_text.size(); }
    HRESULT Read(void *buffer, ULONG size, ULONG *read) override;
    HRESULT Report(UINT64) override { return S_OK; }

private:
    std::string m_text;
    size_t m_position = 0;
};

// Exactly length bytes of a stream, read as they are sent. Passes the progress on to the callback,
// which may be null: at once when all is sent, otherwise not more often than a user could see,
// and once a second when nothing moves, so that an answer of the callback always arrives soon.
class UploadBody final : public RequestBody
{
public:
    UploadBody(IStream *content, UINT32 length, IUploadProgressCallback *callback);

    UINT64 Length() const override { return m_length; }
    HRESULT Read(void *buffer, ULONG size, ULONG *read) override;
    HRESULT Report(UINT64 sent) override;

private:
    using Clock = std::chrono::steady_clock;

    ComPtr<IStream> m_content;
    UINT32 m_length;
    UINT32 m_read = 0;
    ComPtr<IUploadProgressCallback> m_callback;
    std::optional<UINT64> m_reported;
    Clock::time_point m_reportTime;
};
