#include "platform/kernel32/PathText.h"

namespace
{
bool IsHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendUtf8(std::string &bytes, char32_t point)
{
    if (point < 0x80)
    {
        bytes += static_cast<char>(point);
        return;
    }
    const int continuations = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    static constexpr unsigned char Leads[] = {0, 0xC0, 0xE0, 0xF0};
    bytes += static_cast<char>(Leads[continuations] | (point >> (6 * continuations)));
    for (int left = continuations - 1; left >= 0; --left)
    {
        bytes += static_cast<char>(0x80 | ((point >> (6 * left)) & 0x3F));
    }
}

// Returns the length of the well-formed sequence at the start of bytes and sets point; 0 if there is none.
size_t DecodeUtf8(std::string_view bytes, char32_t &point)
{
    const auto lead = static_cast<unsigned char>(bytes[0]);
    const size_t length = lead < 0x80   ? 1
                          : lead < 0xC2 ? 0
                          : lead < 0xE0 ? 2
                          : lead < 0xF0 ? 3
                          : lead < 0xF5 ? 4
                                        : 0;
    if (length == 0 || length > bytes.size())
    {
        return 0;
    }
    point = length == 1 ? lead : lead & (0x7F >> length);
    for (size_t i = 1; i < length; ++i)
    {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if ((byte & 0xC0) != 0x80)
        {
            return 0;
        }
        point = (point << 6) | (byte & 0x3F);
    }
    const bool overlong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
    const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
    return overlong || surrogate || point > 0x10FFFF ? 0 : length;
}
} // namespace

std::string PathToBytes(WideView path)
{
    std::string bytes;
    bytes.reserve(path.size());
    for (size_t i = 0; i < path.size(); ++i)
    {
        const char32_t unit = path[i];
        if (IsHighSurrogate(unit) && i + 1 < path.size() && IsLowSurrogate(path[i + 1]))
        {
            AppendUtf8(bytes, 0x10000 + ((unit - 0xD800) << 10) + (path[++i] - 0xDC00));
        }
        else if (unit >= 0xDC80 && unit <= 0xDCFF)
        {
            bytes += static_cast<char>(unit - 0xDC00);
        }
        else
        {
            AppendUtf8(bytes, unit);
        }
    }
    return bytes;
}

WideText PathFromBytes(std::string_view bytes)
{
    WideText path;
    path.reserve(bytes.size());
    while (!bytes.empty())
    {
        char32_t point = 0;
        size_t length = DecodeUtf8(bytes, point);
        if (length == 0)
        {
            point = 0xDC00 + static_cast<unsigned char>(bytes[0]);
            length = 1;
        }
        if (point >= 0x10000)
        {
            path += static_cast<WCHAR>(0xD800 + ((point - 0x10000) >> 10));
            point = 0xDC00 + ((point - 0x10000) & 0x3FF);
        }
        path += static_cast<WCHAR>(point);
        bytes.remove_prefix(length);
    }
    return path;
}
