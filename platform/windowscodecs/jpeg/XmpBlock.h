// The XMP of a picture. As long as nothing is changed, its segments stay as they were read; with the
// first change the packet is parsed, extended parts included, and written anew. A packet that can't
// be parsed is then replaced by an empty one.
#pragma once

#include "platform/windowscodecs/jpeg/QueryPath.h"
#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <memory>
#include <string>
#include <vector>

class XmpProperties;

class XmpBlock
{
public:
    XmpBlock();
    XmpBlock(const XmpBlock &) = delete;
    ~XmpBlock();

    // Whether the contents of an APP1 segment are XMP.
    static bool Recognises(const Bytes &contents) noexcept;
    void AddSegment(Bytes contents) { m_segments.push_back(std::move(contents)); }

    bool IsEmpty() const;
    void Clear() noexcept;

    // By a property's path without the leading "xmp": one to several items. Get gives no texts for
    // what isn't there. All throw WINCODEC_ERR_INVALIDQUERYREQUEST for a path that can't be a
    // property's, an unknown prefix included.
    std::vector<std::string> Get(const QueryItem *items, size_t count);
    void Set(const QueryItem *items, size_t count, const std::vector<std::string> &texts);
    bool Remove(const QueryItem *items, size_t count);

    // Contents of APP1 segments. Throws WINCODEC_ERR_TOOMUCHMETADATA for a changed packet that is
    // larger than one.
    std::vector<Bytes> Segments() const;

private:
    XmpProperties &Properties();
    void BeginChange();

    std::vector<Bytes> m_segments;
    std::unique_ptr<XmpProperties> m_properties; // as parsed, null before
    bool m_changed = false;
};
