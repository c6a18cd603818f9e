#include "platform/windowscodecs/jpeg/TextMetadata.h"

#include "com/AsciiText.h"
#include "com/Hresult.h"
#include "jpegdata/JpegMarkers.h"

#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <mutex>

#include <wincodec.h>

using namespace std::string_view_literals;

namespace
{
constexpr auto XmpSignature = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr auto PhotoshopSignature = "Photoshop 3.0\0"sv;
constexpr size_t LongestDataset = 0x7FFF; // a longer one would need an extended length
constexpr uint16_t ApplicationRecord = 2;

// In record 2, by their names in queries.
constexpr struct
{
    WideView Name;
    uint16_t Number;
} Datasets[] = {
    {TEXT("Object Name"), 5},
    {TEXT("Keywords"), 25},
    {TEXT("Special Instructions"), 40},
    {TEXT("By-line"), 80},
    {TEXT("By-line Title"), 85},
    {TEXT("City"), 90},
    {TEXT("Sub-location"), 92},
    {TEXT("Province/State"), 95},
    {TEXT("Country/Primary Location Code"), 100},
    {TEXT("Country/Primary Location Name"), 101},
    {TEXT("Original Transmission Reference"), 103},
    {TEXT("Headline"), 105},
    {TEXT("Credit"), 110},
    {TEXT("Source"), 115},
    {TEXT("Copyright Notice"), 116},
    {TEXT("Caption"), 120},
    {TEXT("Writer/Editor"), 122},
};

std::recursive_mutex libraryLock;

void LockLibrary(void *, bool lock)
{
    lock ? libraryLock.lock() : libraryLock.unlock();
}

void PrepareLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize(LockLibrary, nullptr);
    });
}

// The library's own failures become the given code.
template <class Work>
auto Translate(HRESULT code, Work work)
{
    try
    {
        const std::lock_guard lock(libraryLock);
        return work();
    }
    catch (const Exiv2::AnyError &)
    {
        ThrowHresult(code);
    }
}

Exiv2::Value::AutoPtr XmpValue(Exiv2::TypeId type, const std::vector<std::string> &texts)
{
    const std::string first = texts.empty() ? std::string() : texts.front();
    if (type == Exiv2::langAlt)
    {
        auto *value = new Exiv2::LangAltValue;
        value->value_["x-default"] = first;
        return Exiv2::Value::AutoPtr(value);
    }
    if (type != Exiv2::xmpBag && type != Exiv2::xmpSeq)
    {
        return Exiv2::Value::AutoPtr(new Exiv2::XmpTextValue(first));
    }
    Exiv2::Value::AutoPtr value(new Exiv2::XmpArrayValue(type));
    for (const std::string &text : texts)
    {
        value->read(text);
    }
    return value;
}

// The signature and as much of the content as a segment holds, again and again.
void AppendPieces(BYTE marker, std::string_view signature, std::string_view content,
                  std::vector<OutputSegment> &head)
{
    while (!content.empty())
    {
        const std::string_view piece = content.substr(0, MaxSegmentBytes - signature.size());
        Bytes segment(signature.begin(), signature.end());
        segment.insert(segment.end(), piece.begin(), piece.end());
        head.push_back({marker, std::move(segment)});
        content.remove_prefix(piece.size());
    }
}
} // namespace

struct TextMetadata::State
{
    Exiv2::XmpData Xmp;
    Exiv2::IptcData Iptc;
};

TextMetadata::TextMetadata() : m_state(new State)
{
    PrepareLibrary();
}

TextMetadata::~TextMetadata() = default;

void TextMetadata::SetXmp(const std::string &name, const std::vector<std::string> &texts)
{
    Translate(WINCODEC_ERR_INVALIDQUERYREQUEST, [&] {
        const size_t colon = name.find(':');
        if (colon == std::string::npos)
        {
            ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
        }
        const Exiv2::XmpKey key(name.substr(0, colon), name.substr(colon + 1));
        const Exiv2::TypeId known = Exiv2::XmpProperties::propertyType(key);
        const bool isList = texts.size() > 1 && known != Exiv2::xmpSeq && known != Exiv2::langAlt;
        const Exiv2::Value::AutoPtr value = XmpValue(isList ? Exiv2::xmpBag : known, texts);
        if (const auto old = m_state->Xmp.findKey(key); old != m_state->Xmp.end())
        {
            m_state->Xmp.erase(old);
        }
        m_state->Xmp.add(key, value.get());
    });
}

void TextMetadata::SetIptc(WideView name, const std::vector<std::string> &texts)
{
    const auto found =
        std::ranges::find_if(Datasets, [&](const auto &each) { return EqualsIgnoringCase(each.Name, name); });
    if (found == std::end(Datasets))
    {
        ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
    }
    if (std::ranges::any_of(texts, [](const std::string &text) { return text.size() > LongestDataset; }))
    {
        ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
    }
    Translate(WINCODEC_ERR_TOOMUCHMETADATA, [&] {
        Exiv2::IptcData &data = m_state->Iptc;
        const Exiv2::IptcKey key(found->Number, ApplicationRecord);
        for (auto old = data.findKey(key); old != data.end(); old = data.findKey(key))
        {
            data.erase(old);
        }
        data["Iptc.Envelope.CharacterSet"] = std::string("\x1B%G"); // UTF-8, by ISO 2022
        data["Iptc.Application2.RecordVersion"] = uint16_t{4};
        for (const std::string &text : texts)
        {
            Exiv2::StringValue value(text);
            data.add(key, &value);
        }
    });
}

bool TextMetadata::RemoveXmp()
{
    const bool removed = !m_state->Xmp.empty();
    m_state->Xmp.clear();
    return removed;
}

bool TextMetadata::RemoveIptc()
{
    const bool removed = !m_state->Iptc.empty();
    m_state->Iptc.clear();
    return removed;
}

void TextMetadata::AppendSegments(std::vector<OutputSegment> &head) const
{
    Translate(WINCODEC_ERR_TOOMUCHMETADATA, [&] {
        constexpr uint16_t layout = Exiv2::XmpParser::useCompactFormat | Exiv2::XmpParser::omitAllFormatting;
        std::string packet;
        if (!m_state->Xmp.empty() && Exiv2::XmpParser::encode(packet, m_state->Xmp, layout) != 0)
        {
            ThrowHresult(WINCODEC_ERR_INTERNALERROR);
        }
        if (packet.size() + XmpSignature.size() > MaxSegmentBytes)
        {
            ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
        }
        AppendPieces(MARKER_APP1, XmpSignature, packet, head);
        if (!m_state->Iptc.empty())
        {
            const Exiv2::DataBuf block = Exiv2::Photoshop::setIptcIrb(nullptr, 0, m_state->Iptc);
            AppendPieces(MARKER_APP13, PhotoshopSignature,
                         {reinterpret_cast<const char *>(block.pData_), static_cast<size_t>(block.size_)}, head);
        }
    });
}
