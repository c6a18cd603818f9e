// Marker codes of ITU-T T.81, Table B.1, without the 0xFF that stands before them.
#pragma once

#include <windows.h>

enum JpegMarker : BYTE
{
    MARKER_TEM = 0x01,
    MARKER_SOF0 = 0xC0,
    MARKER_SOF1 = 0xC1,
    MARKER_SOF2 = 0xC2,
    MARKER_SOF9 = 0xC9,
    MARKER_SOF10 = 0xCA,
    MARKER_DHT = 0xC4,
    MARKER_DAC = 0xCC,
    MARKER_RST0 = 0xD0,
    MARKER_RST7 = 0xD7,
    MARKER_SOI = 0xD8,
    MARKER_EOI = 0xD9,
    MARKER_SOS = 0xDA,
    MARKER_DQT = 0xDB,
    MARKER_DNL = 0xDC,
    MARKER_DRI = 0xDD,
    MARKER_APP0 = 0xE0,
    MARKER_APP1 = 0xE1,
    MARKER_APP2 = 0xE2,
    MARKER_APP13 = 0xED,
    MARKER_APP14 = 0xEE,
    MARKER_APP15 = 0xEF,
    MARKER_COM = 0xFE
};

// A segment's length word counts itself.
constexpr UINT MaxSegmentBytes = 0xFFFF - 2;

// The pictures' limit of the decoding library; the format itself ends at 65535.
constexpr UINT MaxJpegSide = 65500;

// SOF0 to SOF15 except DHT, JPG and DAC.
inline bool IsFrameHeader(BYTE marker) noexcept
{
    return marker >= 0xC0 && marker <= 0xCF && marker != MARKER_DHT && marker != 0xC8 && marker != MARKER_DAC;
}

inline bool IsRestart(BYTE marker) noexcept
{
    return marker >= MARKER_RST0 && marker <= MARKER_RST7;
}

inline bool IsApplication(BYTE marker) noexcept
{
    return marker >= MARKER_APP0 && marker <= MARKER_APP15;
}
