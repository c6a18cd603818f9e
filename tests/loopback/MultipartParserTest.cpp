#include "loopback/MultipartParser.h"

#include <gmock/gmock.h>

using loopback::MultipartParser;
using loopback::PartHeader;

namespace
{

// Feeds the body in pieces of that many bytes; returns each part as "name|file name|type|bytes", or the error.
std::string Parse(const std::string &body, std::size_t piece)
{
    std::string parts;
    MultipartParser parser("bound", {[&](const PartHeader &header) {
                                         parts += header.name + "|" + header.fileName.value_or("-") + "|" +
                                                  header.contentType + "|";
                                     },
                                     [&](std::string_view bytes) { parts += bytes; }, [&] { parts += "|\n"; }});
    for (std::size_t at = 0; at < body.size(); at += piece)
    {
        parser.Feed(std::string_view(body).substr(at, piece));
    }
    return parser.Error().empty() ? parts + (parser.IsComplete() ? "" : "(no end)") : parser.Error();
}

} // namespace

TEST(MultipartParser, GivesTheSamePartsHoweverTheBodyArrives)
{
    const std::string body = "preamble\r\n--bound\r\n"
                             "Content-Disposition: form-data; name=\"title\"\r\n\r\n"
                             "a\r\n--boun\r\n-\r\n--boundX"
                             "\r\n--bound\r\n"
                             "content-disposition: form-data; filename=\"b\\\"; x=\\\\.jpg\"; name=photo\r\n"
                             "Content-Type: image/jpeg\r\n\r\n"
                             "\r\n--bound--\r\nepilogue --bound";
    const std::string trimmed = std::string(body).replace(body.find("\r\n--boundX"), 10, "");
    for (std::size_t piece = 1; piece <= trimmed.size(); ++piece)
    {
        EXPECT_EQ(Parse(trimmed, piece), "title|-||a\r\n--boun\r\n-|\nphoto|b\"; x=\\.jpg|image/jpeg||\n")
            << piece;
    }
    EXPECT_EQ(Parse(body, 7), "a boundary is not followed by a line break");
}

TEST(MultipartParser, NamesWhatIsWrong)
{
    EXPECT_EQ(Parse("--bound\r\nContent-Disposition: form-data\r\n\r\nx\r\n--bound--", 5), "a part has no name");
    EXPECT_EQ(Parse("--bound\r\nnonsense\r\n\r\nx\r\n--bound--", 5), "a part's header line has no colon");
    EXPECT_EQ(Parse("--bound\r\n" + std::string(20'000, 'x'), 1000), "a part's header is too long");
    EXPECT_EQ(Parse("--bound\r\nContent-Disposition: form-data; name=a\r\n\r\nx", 100), "a|-||(no end)");
    EXPECT_EQ(MultipartParser::BoundaryOf("Multipart/Form-Data; charset=x; BOUNDARY=\"a b\""), "a b");
    EXPECT_EQ(MultipartParser::BoundaryOf("multipart/form-data"), std::nullopt);
    EXPECT_EQ(MultipartParser::BoundaryOf("text/plain; boundary=a"), std::nullopt);
}
