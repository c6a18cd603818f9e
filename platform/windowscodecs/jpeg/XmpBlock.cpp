#include "platform/windowscodecs/jpeg/XmpBlock.h"

#include "com/Hresult.h"
#include "jpegdata/JpegMarkers.h"
#include "platform/windowscodecs/jpeg/JpegStructure.h"
#include "platform/windowscodecs/jpeg/XmpProperties.h"

#include <map>
#include <optional>
#include <utility>

#include <wincodec.h>

using namespace std::string_view_literals;

namespace
{
constexpr auto MainSignature = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr auto ExtensionSignature = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr size_t ExtensionHead = ExtensionSignature.size() + 32 + 4 + 4; // identifier, length, offset

std::string MainPacket(const std::vector<Bytes> &segments)
{
    for (const Bytes &segment : segments)
    {
        if (BeginsWith(segment, MainSignature))
        {
            return std::string(segment.begin() + MainSignature.size(), segment.end());
        }
    }
    return {};
}

DWORD BigEndianAt(const Bytes &segment, size_t at)
{
    return static_cast<DWORD>(segment[at]) << 24 | segment[at + 1] << 16 | segment[at + 2] << 8 | segment[at + 3];
}

// The parts that bear the identifier, put together; nothing if they leave gaps, overlap, or make another
// length than they tell.
std::string ExtensionPacket(const std::vector<Bytes> &segments, std::string_view identifier)
{
    std::map<DWORD, std::string_view> parts;
    std::optional<DWORD> length;
    for (const Bytes &segment : segments)
    {
        if (!BeginsWith(segment, ExtensionSignature) || segment.size() < ExtensionHead)
        {
            continue;
        }
        const std::string_view text(reinterpret_cast<const char *>(segment.data()), segment.size());
        if (text.substr(ExtensionSignature.size(), 32) != identifier)
        {
            continue;
        }
        const DWORD told = BigEndianAt(segment, ExtensionHead - 8);
        const bool isNew =
            parts.emplace(BigEndianAt(segment, ExtensionHead - 4), text.substr(ExtensionHead)).second;
        if (!isNew || told != length.value_or(told))
        {
            return {};
        }
        length = told;
    }
    std::string packet;
    for (const auto &[offset, part] : parts)
    {
        if (offset != packet.size())
        {
            return {};
        }
        packet += part;
    }
    return packet.size() == length ? packet : std::string();
}

void ReadProperties(const std::vector<Bytes> &segments, XmpProperties &properties)
{
    if (segments.empty())
    {
        return;
    }
    properties.Parse(MainPacket(segments));
    const std::string identifier = properties.TakeExtensionIdentifier();
    if (!identifier.empty())
    {
        properties.Parse(ExtensionPacket(segments, identifier));
    }
}
} // namespace

XmpBlock::XmpBlock() = default;
XmpBlock::~XmpBlock() = default;

bool XmpBlock::Recognises(const Bytes &contents) noexcept
{
    return BeginsWith(contents, MainSignature) || BeginsWith(contents, ExtensionSignature);
}

bool XmpBlock::IsEmpty() const
{
    return m_changed ? m_properties->IsEmpty() : m_segments.empty();
}

void XmpBlock::Clear() noexcept
{
    m_segments.clear();
    m_properties.reset();
    m_changed = false;
}

XmpProperties &XmpBlock::Properties()
{
    if (!m_properties)
    {
        auto properties = std::make_unique<XmpProperties>();
        ReadProperties(m_segments, *properties);
        m_properties = std::move(properties);
    }
    return *m_properties;
}

void XmpBlock::BeginChange()
{
    // The old packets go even where reading them fails.
    const std::vector<Bytes> segments = std::exchange(m_segments, {});
    m_changed = true;
    if (!m_properties)
    {
        m_properties = std::make_unique<XmpProperties>();
        ReadProperties(segments, *m_properties);
    }
}

std::vector<std::string> XmpBlock::Get(const QueryItem *items, size_t count)
{
    return Properties().Get(items, count);
}

void XmpBlock::Set(const QueryItem *items, size_t count, const std::vector<std::string> &texts)
{
    BeginChange();
    m_properties->Set(items, count, texts);
}

bool XmpBlock::Remove(const QueryItem *items, size_t count)
{
    BeginChange();
    return m_properties->Remove(items, count);
}

std::vector<Bytes> XmpBlock::Segments() const
{
    if (!m_changed)
    {
        return m_segments;
    }
    if (m_properties->IsEmpty())
    {
        return {};
    }
    const std::string packet = m_properties->Write();
    if (packet.size() + MainSignature.size() > MaxSegmentBytes)
    {
        ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
    }
    Bytes segment(MainSignature.begin(), MainSignature.end());
    segment.insert(segment.end(), packet.begin(), packet.end());
    return {segment};
}
