// The bytes of a JPEG file from its start on: as they are in headers, and as bits where the picture is coded.
//
// In coded data a zero stands behind each byte 0xFF and is no part of it (T.81, B.1.1.5); 0xFF with anything else
// behind it begins a marker, where the bits end.
#pragma once

#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <vector>

// Puts up to size bytes and returns how many; fewer only at the end. May throw.
using ByteReader = std::function<size_t(BYTE *to, size_t size)>;

// Offsets in a file.
struct ByteRange
{
    ULONGLONG begin = 0;
    ULONGLONG end = 0;

    bool IsEmpty() const noexcept { return begin == end; }
};

class CodedData
{
public:
    explicit CodedData(ByteReader read);

    // The next byte, or -1 at the end.
    int Next();
    void Skip(ULONGLONG count);
    ULONGLONG Position() const noexcept { return m_endOffset - static_cast<ULONGLONG>(m_end - m_next); }

    // Bits that were read ahead, the next one at the top. A copy of its own keeps them in registers.
    struct Window
    {
        UINT64 bits = 0;
        int count = 0; // below 0 once more were taken than there are; what is taken then is 0

        UINT Top16() const noexcept { return static_cast<UINT>(bits >> 48); }
        void Take(int number) noexcept
        {
            bits <<= number;
            count -= number;
        }
        UINT TakeValue(int number) noexcept // at most 16
        {
            const UINT value = Top16() >> (16 - number);
            Take(number);
            return value;
        }
    };

    // Begins and continues with the bits from here on.
    Window &Bits() noexcept { return m_window; }

    // At least 32 bits, but where fewer are left.
    void Fill(Window &window)
    {
        if (window.count >= 32)
        {
            return;
        }
        if (m_end - m_next >= 8)
        {
            UINT64 word;
            std::memcpy(&word, m_next, sizeof word);
            if (!HoldsFF(word))
            {
                static_assert(std::endian::native == std::endian::little);
                // Of the last byte only some bits find room; it is read again.
                window.bits |= __builtin_bswap64(word) >> window.count;
                m_next += (63 - window.count) >> 3;
                window.count |= 56;
                return;
            }
        }
        FillSlowly(window);
    }

    // The first byte of which no bit was taken.
    ULONGLONG BitsPosition() const noexcept
    {
        return Position() - static_cast<ULONGLONG>(m_next - BackBy(m_window.count / 8));
    }

    // Whether a whole byte is left, or a restart marker comes.
    bool GoesOn();

    // Ends the bits and moves to the next marker, past those that have their place within coded data if
    // skipsRestarts. Returns what was passed over, from BitsPosition on.
    ByteRange EndBits(bool skipsRestarts);

    // Passes the marker if it comes next.
    bool TakeMarker(BYTE marker);

private:
    static bool HoldsFF(UINT64 word) noexcept
    {
        return (word & ~(word + 0x0101010101010101u) & 0x8080808080808080u) != 0;
    }
    void FillSlowly(Window &window);
    bool Read();
    const BYTE *BackBy(int bytes) const noexcept;

    ByteReader m_read;
    std::vector<BYTE> m_buffer;
    BYTE *m_next;
    BYTE *m_end;
    ULONGLONG m_endOffset = 0; // of what lies at m_end
    Window m_window;
};
