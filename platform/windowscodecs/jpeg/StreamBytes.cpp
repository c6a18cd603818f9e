#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include "com/Hresult.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr size_t BufferBytes = 64 * 1024;
}

HRESULT ReadAt(IStream *stream, ULONGLONG offset, BYTE *to, ULONG count, ULONG *got) noexcept
{
    *got = 0;
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(offset);
    HRESULT result = stream->Seek(place, STREAM_SEEK_SET, nullptr);
    while (SUCCEEDED(result) && *got < count)
    {
        ULONG part = 0;
        result = stream->Read(to + *got, count - *got, &part);
        if (part == 0)
        {
            break;
        }
        *got += part;
    }
    return FAILED(result) ? result : S_OK;
}

void WriteAll(IStream *stream, const BYTE *data, size_t size)
{
    while (size > 0)
    {
        const ULONG part = static_cast<ULONG>(std::min<size_t>(size, 1u << 30));
        ULONG written = 0;
        ThrowIfFailed(stream->Write(data, part, &written));
        if (written == 0)
        {
            ThrowHresult(WINCODEC_ERR_STREAMWRITE);
        }
        data += written;
        size -= written;
    }
}

StreamBytes::StreamBytes(ComPtr<IStream> stream, ULONGLONG base)
    : m_stream(std::move(stream)), m_base(base), m_buffer(BufferBytes)
{
}

void StreamBytes::Seek(ULONGLONG offset) noexcept
{
    if (offset >= m_bufferStart && offset <= m_bufferStart + m_filled)
    {
        m_next = static_cast<size_t>(offset - m_bufferStart);
        return;
    }
    m_bufferStart = offset;
    m_filled = 0;
    m_next = 0;
}

bool StreamBytes::Fill()
{
    m_bufferStart += m_filled;
    m_filled = 0;
    m_next = 0;
    ULONG got = 0;
    ThrowIfFailed(ReadAt(m_stream.Get(), m_base + m_bufferStart, m_buffer.data(), BufferBytes, &got));
    m_filled = got;
    return got > 0;
}

int StreamBytes::Next()
{
    if (m_next == m_filled && !Fill())
    {
        return -1;
    }
    return m_buffer[m_next++];
}

StreamBytes::Run StreamBytes::Peek()
{
    if (m_next == m_filled && !Fill())
    {
        return {nullptr, 0};
    }
    return {m_buffer.data() + m_next, m_filled - m_next};
}

size_t StreamBytes::Read(BYTE *to, size_t count)
{
    size_t done = 0;
    while (done < count)
    {
        const Run run = Peek();
        if (run.Size == 0)
        {
            break;
        }
        const size_t part = std::min(run.Size, count - done);
        std::memcpy(to + done, run.Data, part);
        Take(part);
        done += part;
    }
    return done;
}
