#include "platform/advapi32/RegistryValueText.h"

#include "platform/kernel32/PathText.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace
{
// A reader that moves along the text.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_rest(text) {}

    void SkipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \t"), m_rest.size())); }
    bool AtEnd() const { return m_rest.empty(); }

    bool Take(std::string_view expected)
    {
        if (!m_rest.starts_with(expected))
        {
            return false;
        }
        m_rest.remove_prefix(expected.size());
        return true;
    }

    bool TakeHex(DWORD &number, size_t mostDigits)
    {
        const char *start = m_rest.data();
        const char *end = start + std::min(m_rest.size(), mostDigits);
        const auto [stop, error] = std::from_chars(start, end, number, 16);
        m_rest.remove_prefix(stop - start);
        return error == std::errc() && stop != start;
    }

    // Text in quotes; in it a backslash precedes each backslash and each quote.
    bool TakeQuoted(WideText &text)
    {
        if (!Take("\""))
        {
            return false;
        }
        std::string bytes;
        while (!m_rest.empty() && m_rest[0] != '"')
        {
            const size_t escape = m_rest[0] == '\\' && m_rest.size() > 1 ? 1 : 0;
            bytes += m_rest[escape];
            m_rest.remove_prefix(escape + 1);
        }
        text = PathFromBytes(bytes);
        return Take("\"");
    }

    // Bytes in hexadecimal, separated by commas; after a backslash they continue in the next line.
    bool TakeBytes(std::vector<BYTE> &data)
    {
        SkipBreaks();
        bool more = !AtEnd();
        while (more)
        {
            DWORD byte = 0;
            if (!TakeHex(byte, 2))
            {
                return false;
            }
            data.push_back(static_cast<BYTE>(byte));
            SkipBreaks();
            more = Take(",");
            SkipBreaks();
        }
        return AtEnd();
    }

private:
    void SkipBreaks()
    {
        SkipBlanks();
        while (Take("\\\n"))
        {
            SkipBlanks();
        }
    }

    std::string_view m_rest;
};

std::vector<BYTE> BytesOf(const void *data, size_t size)
{
    const auto *bytes = static_cast<const BYTE *>(data);
    return {bytes, bytes + size};
}

bool TakeData(Scanner &scanner, RegistryLine &value)
{
    WideText text;
    DWORD number = 0;
    if (scanner.TakeQuoted(text))
    {
        value.type = REG_SZ;
        value.data = BytesOf(text.c_str(), (text.size() + 1) * sizeof(WCHAR));
        return true;
    }
    if (scanner.Take("dword:"))
    {
        value.type = REG_DWORD;
        const bool taken = scanner.TakeHex(number, 8);
        value.data = BytesOf(&number, sizeof(number));
        return taken;
    }
    if (scanner.Take("hex:"))
    {
        value.type = REG_BINARY;
        return scanner.TakeBytes(value.data);
    }
    return scanner.Take("hex(") && scanner.TakeHex(value.type, 8) && scanner.Take("):") &&
           scanner.TakeBytes(value.data);
}

std::string Quote(WideView text)
{
    std::string quoted = "\"";
    for (const char byte : PathToBytes(text))
    {
        if (byte == '"' || byte == '\\')
        {
            quoted += '\\';
        }
        quoted += byte;
    }
    return quoted + '"';
}

// Whether the data of a REG_SZ can stand between quotes: one line of valid text, closed by one zero.
bool IsQuotable(const std::vector<BYTE> &data, WideText &text)
{
    if (data.size() < sizeof(WCHAR) || data.size() % sizeof(WCHAR) != 0)
    {
        return false;
    }
    text.resize(data.size() / sizeof(WCHAR));
    std::memcpy(text.data(), data.data(), data.size());
    const bool closed = text.back() == 0;
    text.pop_back();
    for (size_t i = 0; i < text.size(); ++i)
    {
        const bool pair = (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
        i += pair ? 1 : 0;
        if (text[i] < 0x20 || (!pair && (text[i] & 0xF800) == 0xD800))
        {
            return false;
        }
    }
    return closed;
}

std::string FormatBytes(std::string line, const RegistryLine &value)
{
    constexpr size_t longestLine = 76; // and a backslash, as regedit breaks them
    char prefix[24];
    std::snprintf(prefix, sizeof(prefix),
                  value.type == REG_BINARY ? "hex:" : "hex(%x):", static_cast<unsigned>(value.type));
    line += prefix;
    std::string result;
    for (size_t i = 0; i < value.data.size(); ++i)
    {
        char byte[4];
        std::snprintf(byte, sizeof(byte), "%02x", value.data[i]);
        line += byte;
        if (i + 1 < value.data.size())
        {
            line += ',';
            if (line.size() > longestLine)
            {
                result += line + "\\\n";
                line = "  ";
            }
        }
    }
    return result + line;
}
} // namespace

std::optional<RegistryLine> ParseRegistryValue(std::string_view text)
{
    RegistryLine value;
    value.isValue = true;
    value.text = text;
    Scanner scanner(text);
    scanner.SkipBlanks();
    if (!scanner.Take("@") && (!scanner.TakeQuoted(value.name) || value.name.empty()))
    {
        return std::nullopt;
    }
    scanner.SkipBlanks();
    if (!scanner.Take("="))
    {
        return std::nullopt;
    }
    scanner.SkipBlanks();
    if (!TakeData(scanner, value))
    {
        return std::nullopt;
    }
    scanner.SkipBlanks();
    return scanner.AtEnd() ? std::optional(std::move(value)) : std::nullopt;
}

std::string FormatRegistryValue(const RegistryLine &value)
{
    if (!value.text.empty())
    {
        return value.text;
    }
    const std::string name = (value.name.empty() ? std::string("@") : Quote(value.name)) + '=';
    WideText text;
    if (value.type == REG_SZ && IsQuotable(value.data, text))
    {
        return name + Quote(text);
    }
    if (value.type == REG_DWORD && value.data.size() == sizeof(DWORD))
    {
        DWORD number;
        std::memcpy(&number, value.data.data(), sizeof(number));
        char digits[16];
        std::snprintf(digits, sizeof(digits), "dword:%08x", static_cast<unsigned>(number));
        return name + digits;
    }
    return FormatBytes(name, value);
}
