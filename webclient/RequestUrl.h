// An absolute http or https address, split into the parts that signing and sending need, and the encoding of what it
// holds.
#pragma once

#include "com/AsciiText.h" // by which schemes, hosts and names of headers are compared
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

// Percent-encoding as OAuth wants it (RFC 5849, 3.6): all but letters, digits and -._~ becomes %XX with upper-case
// digits. Bodies of form requests use the same encoding, so that a value is always encoded in one way.
void AppendPercentEncoded(SecretText &text, std::string_view bytes);
std::string PercentEncode(std::string_view bytes);

// Decodes one name or value of a query or of a form: "+" is a blank; a "%" without two digits stays.
SecretText FormDecode(std::string_view encoded);

// Names and values of a query or of a form, decoded.
ParameterList ParseForm(std::string_view encoded);

// The same, encoded and joined: the body of a form request, or a query.
std::string EncodeForm(const ParameterList &parameters);

struct RequestUrl
{
    std::string scheme; // lower case
    std::string host;   // lower case; an IPv6 address in its brackets
    unsigned port = 0;  // 0: the scheme's own
    std::string path;   // begins with "/"; encoded, unchanged
    std::string query;  // without the "?", encoded

    // Throws 0x80072EE5, the code for an invalid address, unless text is an absolute http or https address
    // in ASCII characters without a user name. A fragment is cut off.
    static RequestUrl Parse(std::string_view text);

    std::string Text() const;

    // RFC 5849, 3.4.1.2: no query, and no port where it is the scheme's own.
    std::string BaseStringUri() const;

    void AddQuery(const ParameterList &parameters);
    void UpgradeToHttps();
};
