// The XMP properties and IPTC records that queries set: written into new segments of their own, never into those of a
// source. The only place that knows the metadata library.
#pragma once

#include "com/WideText.h"
#include "platform/windowscodecs/jpeg/PixelCoding.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class TextMetadata
{
public:
    TextMetadata();
    ~TextMetadata();

    // name: "dc:title". One text where the schema has a list becomes its only element, and where it has alternatives
    // the default one; several are an unordered list where the schema says nothing else. Throws
    // WINCODEC_ERR_INVALIDQUERYREQUEST for a name that is none, an unknown prefix included.
    void SetXmp(const std::string &name, const std::vector<std::string> &texts);

    // name: a dataset's in queries, "Caption". Throws WINCODEC_ERR_INVALIDQUERYREQUEST for an unknown one,
    // WINCODEC_ERR_TOOMUCHMETADATA for a text of more than 32767 bytes.
    void SetIptc(WideView name, const std::vector<std::string> &texts);

    // Whether there was anything.
    bool RemoveXmp();
    bool RemoveIptc();

    // Adds the segments. Throws WINCODEC_ERR_TOOMUCHMETADATA for an XMP packet that is larger than one.
    void AppendSegments(std::vector<OutputSegment> &head) const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};
