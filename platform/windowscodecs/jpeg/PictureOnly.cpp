#include "platform/windowscodecs/jpeg/PictureOnly.h"

#include "jpegdata/JpegMarkers.h"

namespace
{
// The end of the entropy-coded data that begins at `at`.
size_t SkipEntropyCoded(const Bytes &picture, size_t at) noexcept
{
    while (at + 1 < picture.size() && (picture[at] != 0xFF || picture[at + 1] == 0 ||
                                       (picture[at + 1] >= MARKER_RST0 && picture[at + 1] <= MARKER_RST7)))
    {
        ++at;
    }
    return at;
}
} // namespace

Bytes KeepPictureOnly(const Bytes &picture)
{
    if (picture.size() < 4 || picture[0] != 0xFF || picture[1] != MARKER_SOI)
    {
        return {};
    }
    Bytes kept = {0xFF, MARKER_SOI};
    size_t at = 2;
    while (at + 4 <= picture.size() && picture[at] == 0xFF)
    {
        const BYTE marker = picture[at + 1];
        size_t end = at + 2 + (picture[at + 2] << 8 | picture[at + 3]);
        if (marker == 0xFF)
        {
            ++at;
            continue;
        }
        if (marker == MARKER_EOI)
        {
            break;
        }
        if (end > picture.size())
        {
            return {};
        }
        if (marker == MARKER_SOS)
        {
            end = SkipEntropyCoded(picture, end);
        }
        if (!IsApplication(marker) && marker != MARKER_COM)
        {
            kept.insert(kept.end(), picture.begin() + at, picture.begin() + end);
        }
        at = end;
    }
    if (at + 2 > picture.size() || picture[at] != 0xFF || picture[at + 1] != MARKER_EOI)
    {
        return {};
    }
    kept.insert(kept.end(), {0xFF, MARKER_EOI});
    return kept;
}
