#include "platform/windowscodecs/jpeg/XmpBlock.h"

#include "core/Hresult.h"
#include "platform/windowscodecs/jpeg/JpegMarkers.h"
#include "platform/windowscodecs/jpeg/JpegStructure.h"
#include "platform/windowscodecs/jpeg/XmpProperties.h"

#include <map>

#include <wincodec.h>

using namespace std::string_view_literals;

namespace
{
constexpr auto MAIN_SIGNATURE = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr auto EXTENSION_SIGNATURE = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr size_t EXTENSION_HEAD = EXTENSION_SIGNATURE.size() + 32 + 4 + 4; // identifier, length, offset

std::string MainPacket(const std::vector<Bytes> &segments)
{
    for (const Bytes &segment : segments)
    {
        if (BeginsWith(segment, MAIN_SIGNATURE))
        {
            return std::string(segment.begin() + MAIN_SIGNATURE.size(), segment.end());
        }
    }
    return {};
}

// The parts that bear the identifier, in the order of their offsets.
std::string ExtensionPacket(const std::vector<Bytes> &segments, std::string_view identifier)
{
    std::map<DWORD, std::string> parts;
    for (const Bytes &segment : segments)
    {
        if (!BeginsWith(segment, EXTENSION_SIGNATURE) || segment.size() < EXTENSION_HEAD)
        {
            continue;
        }
        const auto *start = reinterpret_cast<const char *>(segment.data());
        if (std::string_view(start + EXTENSION_SIGNATURE.size(), 32) != identifier)
        {
            continue;
        }
        const BYTE *at = &segment[EXTENSION_HEAD - 4];
        const DWORD offset = static_cast<DWORD>(at[0]) << 24 | at[1] << 16 | at[2] << 8 | at[3];
        parts.emplace(offset, std::string(segment.begin() + EXTENSION_HEAD, segment.end()));
    }
    std::string packet;
    for (const auto &[offset, part] : parts)
    {
        packet += part;
    }
    return packet;
}
} // namespace

XmpBlock::XmpBlock() = default;
XmpBlock::~XmpBlock() = default;

bool XmpBlock::Recognises(const Bytes &contents) noexcept
{
    return BeginsWith(contents, MAIN_SIGNATURE) || BeginsWith(contents, EXTENSION_SIGNATURE);
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
        if (!m_segments.empty())
        {
            properties->Parse(MainPacket(m_segments));
            const std::string identifier = properties->TakeExtensionIdentifier();
            if (!identifier.empty())
            {
                properties->Parse(ExtensionPacket(m_segments, identifier));
            }
        }
        m_properties = std::move(properties);
    }
    return *m_properties;
}

void XmpBlock::BeginChange()
{
    Properties();
    m_segments.clear();
    m_changed = true;
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
    if (packet.size() + MAIN_SIGNATURE.size() > MAX_SEGMENT_BYTES)
    {
        ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
    }
    Bytes segment(MAIN_SIGNATURE.begin(), MAIN_SIGNATURE.end());
    segment.insert(segment.end(), packet.begin(), packet.end());
    return {segment};
}
