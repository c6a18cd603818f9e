// Refusals of the native parser alone: Wine 8 takes document types, and has no limits of size.
#include "tests/platform/msxml/DocumentUse.h"

#include <gmock/gmock.h>

#include <ctime>

namespace
{
std::string WithAttributes(int count)
{
    std::string text = "<a";
    for (int i = 0; i < count; ++i)
    {
        text += " a" + std::to_string(i) + "=''";
    }
    return text + "/>";
}

std::string Nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
    {
        text += "<a>";
    }
    return text;
}

// Within half a second: a parser that takes a large document needs many. And without a word on the terminal.
TEST(DocumentLimits, HostileBytesAreRefusedSoonAndSilently)
{
    using namespace std::string_literals;
    const auto document = NewDocument();
    const std::pair<std::string, const char *> cases[] = {
        {WithAttributes(1000), "taken"},
        {WithAttributes(1001), "refused"},
        {Nested(80'000), "refused"},
        {"<a>" + std::string(255 * 1024, 'x') + "</a>", "taken"},
        {"<a>" + std::string(256 * 1024, 'x') + "</a>", "refused"},
        {"<!DOCTYPE a [<!ENTITY x \"y\">]><a>&x;</a>", "refused"},
        {"<!DOCTYPE a SYSTEM \"file:///etc/passwd\"><a/>", "refused"},
        {"<?xm\xFF version=\"1.0\" encoding=\"utf-8\"?><a/>", "refused"},
        {"\xFF\xFE<\0a\0>\0\0\xDC<\0/\0a\0>\0"s, "refused"},
        {"<?xml version=\"1.0\" encoding=\"us-ascii\"?><a>\x80\x80</a>", "refused"},
        {"<?xml version=\"1.0\" encoding=\"utf-7\"?><a>\xC0\x80</a>", "refused"},
    };
    for (const auto &[bytes, outcome] : cases)
    {
        testing::internal::CaptureStderr();
        const std::clock_t start = std::clock();
        const std::string result = LoadBytes(*document.Get(), bytes);
        EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 5 * 0.5) << bytes.size();
        EXPECT_EQ("", testing::internal::GetCapturedStderr());
        EXPECT_EQ(outcome, result) << bytes.substr(0, 50);
    }
}
} // namespace
