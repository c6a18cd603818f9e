// Bytes of a picture in a stream, read through a buffer. Offsets count from where the picture begins.
// The stream's own position is set before each read, so that several readers can share a stream.
// A failure of the stream is thrown with its own code; its end is no failure.
#pragma once

#include "com/ComPtr.h"

#include <objidl.h>

#include <vector>

using Bytes = std::vector<BYTE>;

class StreamBytes
{
public:
    StreamBytes(ComPtr<IStream> stream, ULONGLONG base);

    void Seek(ULONGLONG offset) noexcept;
    ULONGLONG Position() const noexcept { return m_bufferStart + m_next; }

    // The next byte, or -1 at the end.
    int Next();

    // What lies in the buffer from here on, at least one byte; empty at the end. Take moves on in it.
    struct Run
    {
        const BYTE *Data;
        size_t Size;
    };
    Run Peek();
    void Take(size_t count) noexcept { m_next += count; }

    // Fewer than count only at the end.
    size_t Read(BYTE *to, size_t count);

private:
    bool Fill();

    ComPtr<IStream> m_stream;
    ULONGLONG m_base;
    ULONGLONG m_bufferStart = 0;
    Bytes m_buffer;
    size_t m_filled = 0;
    size_t m_next = 0;
};

// Writes all of it, or throws the stream's code; WINCODEC_ERR_STREAMWRITE if it takes less.
void WriteAll(IStream *stream, const BYTE *data, size_t size);

// Reads at an offset of the stream; less than count only at its end. Doesn't throw.
HRESULT ReadAt(IStream *stream, ULONGLONG offset, BYTE *to, ULONG count, ULONG *got) noexcept;
