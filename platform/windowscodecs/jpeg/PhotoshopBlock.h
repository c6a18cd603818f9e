// The APP13 segments of a picture: Photoshop's image resources, and the IPTC records in one of them.
// Resources that repeat other metadata or hold small pictures (EXIF, XMP, thumbnails) are left out
// when the block is read, and so are segments that aren't Photoshop's.
#pragma once

#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <string>
#include <string_view>
#include <vector>

struct IptcDataset
{
    BYTE Record;
    BYTE Number;
    std::string Value;
};

class PhotoshopBlock
{
public:
    // The contents of one APP13 segment, in the file's order.
    void AddSegment(const Bytes &contents);

    // To be called when all segments are there.
    void Parse();

    bool IsEmpty() const noexcept { return m_resources.empty() && m_datasets.empty(); }
    bool HasIptc() const noexcept { return !m_datasets.empty(); }
    void Clear() noexcept;
    void RemoveIptc() noexcept;

    // By a dataset's name in queries, "Caption". Texts are UTF-8 whatever the file's encoding; none if
    // it isn't there. Throw WINCODEC_ERR_INVALIDQUERYREQUEST for a name that no dataset has.
    std::vector<std::string> Get(std::string_view name) const;
    void Set(std::string_view name, const std::vector<std::string> &texts);
    bool Remove(std::string_view name);

    std::vector<Bytes> Segments() const;

private:
    struct Resource
    {
        WORD Id;
        std::string Name;
        Bytes Data;
    };

    void ParseIptc(const Bytes &data);
    void TurnToUtf8();
    Bytes WriteIptc() const;

    Bytes m_raw;
    std::vector<Resource> m_resources;
    std::vector<IptcDataset> m_datasets;
};
