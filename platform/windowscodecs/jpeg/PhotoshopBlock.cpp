#include "platform/windowscodecs/jpeg/PhotoshopBlock.h"

#include "com/Hresult.h"
#include "jpegdata/JpegMarkers.h"
#include "platform/windowscodecs/jpeg/JpegStructure.h"
#include "platform/windowscodecs/jpeg/PropertyValue.h"

#include <algorithm>

#include <wincodec.h>

using namespace std::string_view_literals;

namespace
{
constexpr auto Signature = "Photoshop 3.0\0"sv;
constexpr WORD IptcResource = 0x0404;
constexpr auto Utf8Declared = "\x1B%G"sv; // dataset 1:90, ISO 2022

// Thumbnails, the digest of the IPTC records, EXIF twice, XMP.
constexpr WORD LeftOut[] = {0x0409, 0x040C, 0x0422, 0x0423, 0x0424, 0x0425};

struct DatasetName
{
    std::string_view Name;
    BYTE Number; // in record 2
};

constexpr DatasetName Names[] = {
    {"Object Type Reference", 3},
    {"Object Attribute Reference", 4},
    {"Object Name", 5},
    {"Edit Status", 7},
    {"Editorial Update", 8},
    {"Urgency", 10},
    {"Subject Reference", 12},
    {"Category", 15},
    {"Supplemental Category", 20},
    {"Fixture Identifier", 22},
    {"Keywords", 25},
    {"Content Location Code", 26},
    {"Content Location Name", 27},
    {"Release Date", 30},
    {"Release Time", 35},
    {"Expiration Date", 37},
    {"Expiration Time", 38},
    {"Special Instructions", 40},
    {"Action Advised", 42},
    {"Reference Service", 45},
    {"Reference Date", 47},
    {"Reference Number", 50},
    {"Date Created", 55},
    {"Time Created", 60},
    {"Digital Creation Date", 62},
    {"Digital Creation Time", 63},
    {"Originating Program", 65},
    {"Program Version", 70},
    {"Object Cycle", 75},
    {"By-line", 80},
    {"By-line Title", 85},
    {"City", 90},
    {"Sub-location", 92},
    {"Province/State", 95},
    {"Country/Primary Location Code", 100},
    {"Country/Primary Location Name", 101},
    {"Original Transmission Reference", 103},
    {"Headline", 105},
    {"Credit", 110},
    {"Source", 115},
    {"Copyright Notice", 116},
    {"Contact", 118},
    {"Caption", 120},
    {"Writer/Editor", 122},
    {"Image Type", 130},
    {"Image Orientation", 131},
    {"Language Identifier", 135},
};

char Lower(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

BYTE NumberOf(std::string_view name)
{
    for (const DatasetName &entry : Names)
    {
        if (std::equal(name.begin(), name.end(), entry.Name.begin(), entry.Name.end(),
                       [](char a, char b) { return Lower(a) == Lower(b); }))
        {
            return entry.Number;
        }
    }
    ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
}

void Append16(Bytes &to, UINT value)
{
    to.push_back(static_cast<BYTE>(value >> 8));
    to.push_back(static_cast<BYTE>(value));
}

void Append32(Bytes &to, size_t value)
{
    Append16(to, static_cast<UINT>(value >> 16) & 0xFFFF);
    Append16(to, static_cast<UINT>(value) & 0xFFFF);
}

bool IsText(const IptcDataset &dataset) noexcept
{
    return dataset.Record == 2 && dataset.Number != 0;
}
} // namespace

void PhotoshopBlock::AddSegment(const Bytes &contents)
{
    if (BeginsWith(contents, Signature))
    {
        m_raw.insert(m_raw.end(), contents.begin() + Signature.size(), contents.end());
    }
}

void PhotoshopBlock::Parse()
{
    size_t at = 0;
    while (at + 12 <= m_raw.size() && std::equal(m_raw.begin() + at, m_raw.begin() + at + 4, "8BIM"))
    {
        Resource resource{static_cast<WORD>(m_raw[at + 4] << 8 | m_raw[at + 5]), {}, {}};
        const size_t nameLength = m_raw[at + 6];
        const size_t sizeAt = at + 6 + (nameLength + 2) / 2 * 2;
        if (sizeAt + 4 > m_raw.size())
        {
            break;
        }
        const size_t size = static_cast<size_t>(m_raw[sizeAt]) << 24 | m_raw[sizeAt + 1] << 16 |
                            m_raw[sizeAt + 2] << 8 | m_raw[sizeAt + 3];
        const size_t dataAt = sizeAt + 4;
        if (size > m_raw.size() - dataAt)
        {
            break;
        }
        resource.Name.assign(m_raw.begin() + at + 7, m_raw.begin() + at + 7 + nameLength);
        resource.Data.assign(m_raw.begin() + dataAt, m_raw.begin() + dataAt + size);
        if (resource.Id == IptcResource)
        {
            ParseIptc(resource.Data);
        }
        else if (std::find(std::begin(LeftOut), std::end(LeftOut), resource.Id) == std::end(LeftOut))
        {
            m_resources.push_back(std::move(resource));
        }
        at = dataAt + size + (size & 1);
    }
    m_raw.clear();
}

void PhotoshopBlock::ParseIptc(const Bytes &data)
{
    size_t at = 0;
    while (at + 5 <= data.size() && data[at] == 0x1C)
    {
        const size_t size = data[at + 3] << 8 | data[at + 4];
        // The topmost bit announces an extended length, which no text of these records needs.
        if (size > 0x7FFF || size > data.size() - at - 5)
        {
            break;
        }
        m_datasets.push_back(
            {data[at + 1], data[at + 2], std::string(data.begin() + at + 5, data.begin() + at + 5 + size)});
        at += 5 + size;
    }
}

void PhotoshopBlock::Clear() noexcept
{
    m_raw.clear();
    m_resources.clear();
    m_datasets.clear();
}

void PhotoshopBlock::RemoveIptc() noexcept
{
    m_datasets.clear();
}

std::vector<std::string> PhotoshopBlock::Get(std::string_view name) const
{
    const BYTE number = NumberOf(name);
    std::vector<std::string> texts;
    for (const IptcDataset &dataset : m_datasets)
    {
        if (dataset.Record == 2 && dataset.Number == number)
        {
            texts.push_back(ToWellFormedUtf8(dataset.Value));
        }
    }
    return texts;
}

void PhotoshopBlock::TurnToUtf8()
{
    const auto declares = [](const IptcDataset &dataset) { return dataset.Record == 1 && dataset.Number == 90; };
    for (IptcDataset &dataset : m_datasets)
    {
        if (IsText(dataset))
        {
            dataset.Value = ToWellFormedUtf8(dataset.Value);
        }
    }
    std::erase_if(m_datasets, declares);
    m_datasets.insert(m_datasets.begin(), {1, 90, std::string(Utf8Declared)});
}

void PhotoshopBlock::Set(std::string_view name, const std::vector<std::string> &texts)
{
    const BYTE number = NumberOf(name);
    Remove(name);
    TurnToUtf8();
    if (std::none_of(m_datasets.begin(), m_datasets.end(),
                     [](const IptcDataset &d) { return d.Record == 2 && d.Number == 0; }))
    {
        m_datasets.push_back({2, 0, std::string("\0\4", 2)});
    }
    for (const std::string &text : texts)
    {
        if (text.size() > 0x7FFF)
        {
            ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
        }
        m_datasets.push_back({2, number, text});
    }
    // Readers expect the records one after the other.
    std::stable_sort(m_datasets.begin(), m_datasets.end(), [](const IptcDataset &a, const IptcDataset &b) {
        return a.Record != b.Record ? a.Record < b.Record : a.Number < b.Number;
    });
}

bool PhotoshopBlock::Remove(std::string_view name)
{
    const BYTE number = NumberOf(name);
    const size_t removed = std::erase_if(m_datasets, [number](const IptcDataset &dataset) {
        return dataset.Record == 2 && dataset.Number == number;
    });
    if (std::none_of(m_datasets.begin(), m_datasets.end(), IsText))
    {
        m_datasets.clear();
    }
    return removed > 0;
}

Bytes PhotoshopBlock::WriteIptc() const
{
    Bytes data;
    for (const IptcDataset &dataset : m_datasets)
    {
        data.insert(data.end(), {0x1C, dataset.Record, dataset.Number});
        Append16(data, static_cast<UINT>(dataset.Value.size()));
        data.insert(data.end(), dataset.Value.begin(), dataset.Value.end());
    }
    return data;
}

std::vector<Bytes> PhotoshopBlock::Segments() const
{
    std::vector<Resource> resources = m_resources;
    if (!m_datasets.empty())
    {
        resources.insert(resources.begin(), {IptcResource, {}, WriteIptc()});
    }
    Bytes block;
    for (const Resource &resource : resources)
    {
        block.insert(block.end(), {'8', 'B', 'I', 'M'});
        Append16(block, resource.Id);
        block.push_back(static_cast<BYTE>(resource.Name.size()));
        block.insert(block.end(), resource.Name.begin(), resource.Name.end());
        block.resize(block.size() + (resource.Name.size() + 1) % 2);
        Append32(block, resource.Data.size());
        block.insert(block.end(), resource.Data.begin(), resource.Data.end());
        block.resize(block.size() + resource.Data.size() % 2);
    }
    const size_t room = MaxSegmentBytes - Signature.size();
    std::vector<Bytes> segments;
    for (size_t at = 0; at < block.size(); at += room)
    {
        Bytes segment(Signature.begin(), Signature.end());
        segment.insert(segment.end(), block.begin() + at, block.begin() + std::min(block.size(), at + room));
        segments.push_back(std::move(segment));
    }
    return segments;
}
