// An absolute http or https address, in the parts that signing and sending need.
#pragma once

#include "webclient/SecretText.h"

#include <string>
#include <string_view>
#include <vector>

// One parameter of a request: UTF-8, not encoded.
struct Parameter
{
    std::string name;
    SecretText value;
};
using ParameterList = std::vector<Parameter>;

// Names and values of a query or of a form, decoded.
ParameterList ParseForm(std::string_view encoded);

// The same, encoded and joined: the body of a form request, or a query.
std::string EncodeForm(const ParameterList &parameters);

struct RequestUrl
{
    std::string scheme; // lower case
    std::string host;   // lower case; an IPv6 address in its brackets
    unsigned port = 0;  // 0: the scheme's own
    std::string path;   // begins with "/", encoded as it was given
    std::string query;  // without the "?", encoded

    // Throws the code for an invalid address if text isn't an absolute http or https address of
    // plain ASCII characters, or if it has a user name in it. A fragment is left out.
    static RequestUrl Parse(std::string_view text);

    std::string Text() const;

    // RFC 5849, 3.4.1.2: no query, and no port where it is the scheme's own.
    std::string BaseStringUri() const;

    void AddQuery(const ParameterList &parameters);
    void UpgradeToHttps();
};
