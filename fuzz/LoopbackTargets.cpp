#include "fuzz/FuzzTarget.h"

#include "loopback/FormFields.h"
#include "loopback/MultipartParser.h"

namespace
{
const std::string Boundary = "----8d3";

std::vector<std::string> MultipartSamples()
{
    const std::string mark = "--" + Boundary;
    return {mark + "\r\nContent-Disposition: form-data; name=\"title\"\r\n\r\nwords\r\n" + mark +
                "\r\nContent-Disposition: form-data; name=\"photo\"; filename=\"a \\\"b\\\".jpg\"\r\n"
                "Content-Type: image/jpeg\r\n\r\n\xFF\xD8\r\n--\r\n----8\r\n" +
                mark + "--\r\n",
            "preamble\r\n" + mark + "\r\n\r\n\r\n" + mark + "--"};
}

// Everything that the parser reports for the bytes, fed `step` bytes at a time.
std::string Parsed(std::string_view bytes, size_t step)
{
    std::string told;
    loopback::MultipartParser parser(Boundary,
                                     {[&](const loopback::PartHeader &header) {
                                          told += "[" + header.name + "|" + header.fileName.value_or("-") + "|" +
                                                  header.contentType + "]";
                                      },
                                      [&](std::string_view piece) { told += piece; }, [&] { told += "[end]"; }});
    bool isWell = true;
    for (size_t at = 0; at < bytes.size() && isWell; at += step)
    {
        isWell = parser.Feed(bytes.substr(at, step));
    }
    return isWell && parser.IsComplete() ? told : "[bad]";
}

void ReadMultipart(std::string_view bytes)
{
    const std::string whole = Parsed(bytes, bytes.size() + 1);
    if (Parsed(bytes, 1) != whole || Parsed(bytes, 7) != whole)
    {
        Broken("a body is the same in however many pieces it comes");
    }
    loopback::MultipartParser::BoundaryOf(std::string(bytes));
}

std::vector<std::string> FormSamples()
{
    return {"a=b&c=%C3%A4+%zz&&=x&d", "oauth_token=t&oauth_signature=abc%2Bdef%3D", "%", "%4",
            "1234567890123456789"};
}

void ReadForm(std::string_view bytes)
{
    loopback::ParseForm(bytes);
    loopback::ParseWholeNumber(bytes);
    if (loopback::PercentDecode(loopback::PercentEncode(bytes)) != bytes)
    {
        Broken("decoding gives back what was encoded");
    }
}
} // namespace

const FuzzTarget MultipartBodies{"multipart", MultipartSamples, ReadMultipart};
const FuzzTarget Forms{"form", FormSamples, ReadForm};
