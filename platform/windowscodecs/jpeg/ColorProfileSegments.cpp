// Colour profiles in the APP2 segments of a JPEG file. The only place that knows the colour management library.
#include "com/Hresult.h"
#include "jpegdata/JpegMarkers.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include <algorithm>

#include <wincodec.h>

#include <lcms2.h>

using namespace std::string_view_literals;

namespace
{
constexpr auto Signature = "ICC_PROFILE\0"sv;
constexpr size_t HeadBytes = Signature.size() + 2; // the part's number from 1, and how many there are

bool IsColorProfile(const Bytes &profile) noexcept
{
    constexpr size_t headerBytes = 128;
    if (profile.size() < headerBytes)
    {
        return false;
    }
    const cmsContext context = cmsCreateContext(nullptr, nullptr);
    const cmsHPROFILE handle =
        cmsOpenProfileFromMemTHR(context, profile.data(), static_cast<cmsUInt32Number>(profile.size()));
    if (handle != nullptr)
    {
        cmsCloseProfile(handle);
    }
    cmsDeleteContext(context);
    return handle != nullptr;
}
} // namespace

Bytes ReadColorProfile(StreamBytes &source, const JpegStructure &structure)
{
    const SegmentPlace *parts[256] = {};
    UINT count = 0;
    for (const SegmentPlace &place : structure.Segments)
    {
        if (place.Marker != MARKER_APP2 || place.Length < HeadBytes)
        {
            continue;
        }
        const Bytes head = ReadSegment(source, {place.Marker, static_cast<UINT>(HeadBytes), place.Offset});
        if (!BeginsWith(head, Signature))
        {
            continue;
        }
        const BYTE number = head[Signature.size()];
        if (parts[number] == nullptr)
        {
            parts[number] = &place;
        }
        count = std::max<UINT>(count, head[Signature.size() + 1]);
    }
    Bytes profile;
    for (UINT number = 1; number <= count; ++number)
    {
        if (parts[number] == nullptr)
        {
            return {};
        }
        const Bytes part = ReadSegment(source, *parts[number]);
        profile.insert(profile.end(), part.begin() + HeadBytes, part.end());
    }
    return IsColorProfile(profile) ? profile : Bytes();
}

void AppendColorProfile(const Bytes &profile, std::vector<OutputSegment> &head)
{
    const size_t room = MaxSegmentBytes - HeadBytes;
    const size_t count = (profile.size() + room - 1) / room;
    if (count > 255)
    {
        ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
    }
    for (size_t number = 0; number < count; ++number)
    {
        Bytes contents(Signature.begin(), Signature.end());
        contents.insert(contents.end(), {static_cast<BYTE>(number + 1), static_cast<BYTE>(count)});
        const auto from = profile.begin() + static_cast<ptrdiff_t>(number * room);
        contents.insert(contents.end(), from, from + std::min<ptrdiff_t>(room, profile.end() - from));
        head.push_back({MARKER_APP2, std::move(contents)});
    }
}
