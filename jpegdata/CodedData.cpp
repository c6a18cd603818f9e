#include "jpegdata/CodedData.h"

#include "jpegdata/JpegMarkers.h"

namespace
{
constexpr size_t BufferBytes = 64 * 1024;

// Bytes of the buffer that stay when it is filled: those that a window may hold, with their zeros.
constexpr size_t KeptBytes = 16;
} // namespace

CodedData::CodedData(ByteReader read)
    : m_read(std::move(read)),
      m_buffer(KeptBytes + BufferBytes),
      m_next(m_buffer.data() + KeptBytes),
      m_end(m_next)
{
}

// Keeps what wasn't taken yet; false at the end.
bool CodedData::Read()
{
    const size_t left = static_cast<size_t>(m_end - m_next);
    BYTE *const start = m_buffer.data();
    std::memmove(start, m_next - KeptBytes, KeptBytes + left);
    m_next = start + KeptBytes;
    m_end = m_next + left;
    const size_t got = m_read(m_end, BufferBytes - left);
    m_end += got;
    m_endOffset += got;
    return got != 0;
}

int CodedData::Next()
{
    return m_next != m_end || Read() ? *m_next++ : -1;
}

void CodedData::Skip(ULONGLONG count)
{
    while (count > 0 && (m_next != m_end || Read()))
    {
        const auto part = std::min<ULONGLONG>(count, static_cast<ULONGLONG>(m_end - m_next));
        m_next += part;
        count -= part;
    }
}

// Byte by byte: 0xFF is near, or the end of the buffer.
void CodedData::FillSlowly(Window &window)
{
    if (m_end - m_next < 16)
    {
        Read();
    }
    while (window.count <= 56 && window.count >= 0 && m_next != m_end)
    {
        const BYTE byte = *m_next;
        if (byte == 0xFF && (m_end - m_next < 2 || m_next[1] != 0))
        {
            return;
        }
        window.bits |= UINT64{byte} << (56 - window.count);
        window.count += 8;
        m_next += byte == 0xFF ? 2 : 1;
    }
}

// Where the last bytes that were read begin.
const BYTE *CodedData::BackBy(int bytes) const noexcept
{
    const BYTE *at = m_next;
    for (; bytes > 0; --bytes)
    {
        at -= at[-1] == 0 && at[-2] == 0xFF ? 2 : 1;
    }
    return at;
}

bool CodedData::GoesOn()
{
    Fill(m_window);
    return m_window.count >= 8 || (m_end - m_next >= 2 && IsRestart(m_next[1]));
}

ByteRange CodedData::EndBits(bool skipsRestarts)
{
    ByteRange unread{BitsPosition(), 0};
    m_window = {};
    ULONGLONG fill = 0; // bytes 0xFF in front of a marker's own, which are no data
    while (m_end - m_next >= 2 || Read())
    {
        if (m_end - m_next < 2)
        {
            continue;
        }
        if (*m_next != 0xFF)
        {
            const void *const marker = std::memchr(m_next, 0xFF, static_cast<size_t>(m_end - m_next));
            m_next += marker != nullptr ? static_cast<const BYTE *>(marker) - m_next : m_end - m_next;
            continue;
        }
        if (m_next[1] == 0xFF)
        {
            ++fill;
            ++m_next;
            continue;
        }
        if (m_next[1] != 0 && !(skipsRestarts && IsRestart(m_next[1])))
        {
            break;
        }
        fill = 0;
        m_next += 2;
    }
    // A file that ends in the middle of a marker leaves its 0xFF.
    m_next += m_end - m_next == 1 && *m_next != 0xFF ? 1 : 0;
    unread.end = Position() - fill;
    return unread;
}

bool CodedData::TakeMarker(BYTE marker)
{
    if (m_end - m_next < 2)
    {
        Read();
    }
    const bool comes = m_end - m_next >= 2 && m_next[0] == 0xFF && m_next[1] == marker;
    m_next += comes ? 2 : 0;
    return comes;
}
