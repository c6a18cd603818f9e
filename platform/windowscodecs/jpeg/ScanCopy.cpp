#include "platform/windowscodecs/jpeg/ScanCopy.h"

#include "jpegdata/JpegMarkers.h"
#include "platform/windowscodecs/jpeg/JpegStructure.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace
{
constexpr size_t BufferBytes = 64 * 1024;

// Collects small pieces, so that the stream sees few and large writes.
class Output
{
public:
    explicit Output(IStream *stream) : m_stream(stream) { m_buffer.reserve(BufferBytes); }

    void Put(BYTE byte)
    {
        if (m_buffer.size() == BufferBytes)
        {
            Flush();
        }
        m_buffer.push_back(byte);
    }

    void Put(const BYTE *data, size_t size)
    {
        if (m_buffer.size() + size > BufferBytes)
        {
            Flush();
        }
        if (size > BufferBytes)
        {
            WriteAll(m_stream, data, size);
            return;
        }
        m_buffer.insert(m_buffer.end(), data, data + size);
    }

    void PutSegment(BYTE marker, const Bytes &contents)
    {
        const size_t length = contents.size() + 2;
        const BYTE start[] = {0xFF, marker, static_cast<BYTE>(length >> 8), static_cast<BYTE>(length)};
        Put(start, sizeof start);
        Put(contents.data(), contents.size());
    }

    void Flush()
    {
        WriteAll(m_stream, m_buffer.data(), m_buffer.size());
        m_buffer.clear();
    }

private:
    IStream *m_stream;
    Bytes m_buffer;
};

// Copies entropy-coded data with its restart markers up to the next marker, and returns that one;
// 0 at the end of the stream. unread: what is left out from here on.
BYTE CopyEntropyCoded(StreamBytes &source, std::span<const ByteRange> &unread, Output &output)
{
    for (;;)
    {
        StreamBytes::Run run = source.Peek();
        if (!unread.empty())
        {
            if (source.Position() == unread.front().begin)
            {
                source.Seek(unread.front().end);
                unread = unread.subspan(1);
                continue;
            }
            run.Size =
                static_cast<size_t>(std::min<ULONGLONG>(run.Size, unread.front().begin - source.Position()));
        }
        if (run.Size == 0)
        {
            return 0;
        }
        const auto *marker = static_cast<const BYTE *>(std::memchr(run.Data, 0xFF, run.Size));
        const size_t plain = marker != nullptr ? static_cast<size_t>(marker - run.Data) : run.Size;
        output.Put(run.Data, plain);
        source.Take(plain);
        if (marker == nullptr)
        {
            continue;
        }
        int code = source.Next();
        while (code == 0xFF)
        {
            code = source.Next();
        }
        if (code < 0)
        {
            return 0;
        }
        if (code != 0 && (code < MARKER_RST0 || code > MARKER_RST7))
        {
            return static_cast<BYTE>(code);
        }
        output.Put(0xFF);
        output.Put(static_cast<BYTE>(code));
    }
}

// Segments that decoding needs.
bool BelongsToPicture(BYTE marker) noexcept
{
    return IsFrameHeader(marker) || marker == MARKER_DHT || marker == MARKER_DAC || marker == MARKER_DQT ||
           marker == MARKER_DRI || marker == MARKER_SOS;
}

bool IsAlone(BYTE marker) noexcept
{
    return marker == MARKER_TEM || IsRestart(marker);
}
} // namespace

void CopyScans(StreamBytes &source, const std::vector<OutputSegment> &head, const std::vector<ByteRange> &unread,
               IStream *target)
{
    std::span<const ByteRange> unreadFromHere(unread);
    Output output(target);
    output.Put(0xFF);
    output.Put(MARKER_SOI);
    for (const OutputSegment &segment : head)
    {
        output.PutSegment(segment.Marker, segment.Contents);
    }
    source.Seek(2);
    BYTE marker = NextMarker(source);
    // The start of another picture or the end of the file are an end too.
    while (marker != MARKER_EOI && marker != MARKER_SOI && marker != 0)
    {
        if (IsAlone(marker))
        {
            marker = NextMarker(source);
            continue;
        }
        SegmentPlace place{marker, ReadSegmentLength(source), 0};
        place.Offset = source.Position();
        if (BelongsToPicture(marker))
        {
            output.PutSegment(marker, ReadSegment(source, place));
        }
        source.Seek(place.Offset + place.Length);
        marker = marker == MARKER_SOS ? CopyEntropyCoded(source, unreadFromHere, output) : NextMarker(source);
    }
    output.Put(0xFF);
    output.Put(MARKER_EOI);
    output.Flush();
}
