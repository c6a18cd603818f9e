// Result codes and words for requests that found no answer.
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
