// Properties of an XMP packet by the items of a query's path. The only place that knows the metadata
// library.
#pragma once

#include "platform/windowscodecs/jpeg/QueryPath.h"

#include <memory>
#include <string>
#include <vector>

class XmpProperties
{
public:
    XmpProperties();
    ~XmpProperties();

    // Adds what the packet holds; what is there already stays. A packet that can't be parsed adds
    // nothing.
    void Parse(const std::string &packet);

    // The identifier of the extended packet that the parsed one names, empty if none; the property is
    // removed.
    std::string TakeExtensionIdentifier();

    bool IsEmpty() const noexcept;

    // Failures as in XmpBlock. A text set where the schema has an array becomes its only element, and
    // where it has alternatives the default one.
    std::vector<std::string> Get(const QueryItem *items, size_t count) const;
    void Set(const QueryItem *items, size_t count, const std::vector<std::string> &texts);
    bool Remove(const QueryItem *items, size_t count);

    std::string Write() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};
