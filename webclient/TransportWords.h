// Result codes and words for requests that got no answer. Each of the three outcomes has its own words: an
// unknown one says "may or may not have arrived".
#pragma once

#include "webclient/HttpTransport.h"

#include <string>
#include <string_view>

struct TransportWords
{
    HRESULT code;            // always a failure
    std::string status;      // "No connection"
    std::string description; // a sentence or two, on one line
};

// what is "picture" or "request".
TransportWords WordsFor(const TransportError &error, std::string_view host, std::string_view what);
