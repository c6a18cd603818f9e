#include "platform/advapi32/RegistryText.h"

#include "com/Checksum.h"
#include "com/TextConversion.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace
{
constexpr std::string_view Heading = "Windows Registry Editor Version 5.00";
constexpr std::string_view CheckStart = "; checked: ";
constexpr std::string_view Root = "[HKEY_CURRENT_USER\\";
constexpr WideView RegisteredClasses = TEXT("SOFTWARE\\CLASSES\\");

// A line of the text, which loses it; without the end of the line. closed: whether it had one.
std::string_view TakeLine(std::string_view &text, bool &closed)
{
    const size_t end = std::min(text.find('\n'), text.size());
    closed = end < text.size();
    std::string_view line = text.substr(0, end);
    text.remove_prefix(closed ? end + 1 : end);
    return line;
}

bool Take(std::string_view &text, std::string_view expected)
{
    const bool taken = text.starts_with(expected);
    text.remove_prefix(taken ? expected.size() : 0);
    return taken;
}

bool TakeHex(std::string_view &text, DWORD &number, size_t mostDigits)
{
    const char *const start = text.data();
    const auto [stop, error] = std::from_chars(start, start + std::min(text.size(), mostDigits), number, 16);
    text.remove_prefix(stop - start);
    return error == std::errc() && stop != start;
}

// Text in quotes; in it a backslash precedes each backslash and each quote.
bool TakeQuoted(std::string_view &text, WideText &content)
{
    if (!Take(text, "\""))
    {
        return false;
    }
    std::string bytes;
    while (!text.empty() && text[0] != '"')
    {
        const size_t escape = text[0] == '\\' && text.size() > 1 ? 1 : 0;
        bytes += text[escape];
        text.remove_prefix(escape + 1);
    }
    content = PathFromBytes(bytes);
    return Take(text, "\"");
}

std::vector<BYTE> BytesOf(const void *data, size_t size)
{
    const auto *bytes = static_cast<const BYTE *>(data);
    return {bytes, bytes + size};
}

bool TakeBytes(std::string_view &text, std::vector<BYTE> &data)
{
    DWORD byte = 0;
    while (!text.empty() && TakeHex(text, byte, 2))
    {
        data.push_back(static_cast<BYTE>(byte));
        if (!Take(text, ","))
        {
            return true;
        }
    }
    return data.empty();
}

bool TakeData(std::string_view &text, RegistryValue &value)
{
    WideText quoted;
    if (TakeQuoted(text, quoted))
    {
        value.type = REG_SZ;
        value.data = BytesOf(quoted.c_str(), (quoted.size() + 1) * sizeof(WCHAR));
        return true;
    }
    DWORD number = 0;
    if (Take(text, "dword:"))
    {
        value.type = REG_DWORD;
        const bool taken = TakeHex(text, number, 8);
        value.data = BytesOf(&number, sizeof(number));
        return taken;
    }
    return Take(text, "hex(") && TakeHex(text, value.type, 8) && Take(text, "):") && TakeBytes(text, value.data);
}

std::optional<RegistryValue> ParseValue(std::string_view line)
{
    RegistryValue value;
    const bool isNamed = Take(line, "@") || (TakeQuoted(line, value.name) && !value.name.empty());
    const bool valid = isNamed && Take(line, "=") && TakeData(line, value);
    return valid && line.empty() ? std::optional(std::move(value)) : std::nullopt;
}

// The remark that tells whether everything below it is as it was written. It stands at the top, where a file that
// was cut has lost either the keys or the right to it.
std::string CheckLine(std::string_view below)
{
    char line[128];
    std::snprintf(line, sizeof(line), "%s%zu bytes follow, CRC-32 %08x. After a change by hand delete this line.",
                  CheckStart.data(), below.size(), static_cast<unsigned>(Crc32(below)));
    return line;
}

// The path of a key's line below HKEY_CURRENT_USER; nothing for another line, and for what is passed over.
std::optional<WideText> KeyPathOf(std::string_view line)
{
    if (!Take(line, Root) || !line.ends_with(']'))
    {
        return std::nullopt;
    }
    WideText path = PathFromBytes(line.substr(0, line.size() - 1));
    const bool isClass = FoldRegistryName(path).starts_with(RegisteredClasses);
    return isClass ? std::nullopt : std::optional(std::move(path));
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
    return closed && std::ranges::none_of(text, [](WCHAR unit) { return unit < 0x20; }) &&
           PathFromBytes(PathToBytes(text)) == text;
}

std::string Quote(WideView text)
{
    std::string quoted = "\"";
    for (const char byte : PathToBytes(text))
    {
        quoted += byte == '"' || byte == '\\' ? "\\" : "";
        quoted += byte;
    }
    return quoted + '"';
}

std::string FormatValue(const RegistryValue &value)
{
    const std::string name = (value.name.empty() ? std::string("@") : Quote(value.name)) + '=';
    WideText text;
    if (value.type == REG_SZ && IsQuotable(value.data, text))
    {
        return name + Quote(text);
    }
    char part[24];
    if (value.type == REG_DWORD && value.data.size() == sizeof(DWORD))
    {
        DWORD number;
        std::memcpy(&number, value.data.data(), sizeof(number));
        std::snprintf(part, sizeof(part), "dword:%08x", static_cast<unsigned>(number));
        return name + part;
    }
    std::snprintf(part, sizeof(part), "hex(%x):", static_cast<unsigned>(value.type));
    std::string line = name + part;
    for (const BYTE byte : value.data)
    {
        std::snprintf(part, sizeof(part), "%s%02x", line.ends_with(':') ? "" : ",", byte);
        line += part;
    }
    return line;
}
} // namespace

std::optional<RegistryContent> ParseRegistryText(std::string_view bytes)
{
    bool closed = true;
    std::string_view text = bytes;
    if (bytes.find('\0') != std::string_view::npos || TakeLine(text, closed) != Heading)
    {
        return std::nullopt;
    }
    if (text.starts_with(CheckStart))
    {
        const std::string_view check = TakeLine(text, closed);
        if (check != CheckLine(text))
        {
            return std::nullopt;
        }
    }
    RegistryContent content;
    bool hasKeys = false;
    RegistryKey *key = nullptr;
    while (!text.empty())
    {
        const std::string_view line = TakeLine(text, closed);
        if (line.starts_with('[') && line.ends_with(']'))
        {
            const auto path = KeyPathOf(line);
            key = path ? &content.Make(*path) : nullptr;
            hasKeys = true;
            continue;
        }
        auto value = ParseValue(line);
        if (value && key != nullptr)
        {
            key->SetValue(std::move(*value));
        }
        if (!value && !closed && !line.starts_with(';'))
        {
            return std::nullopt;
        }
    }
    return hasKeys ? std::optional(std::move(content)) : std::nullopt;
}

std::string FormatRegistryText(const RegistryContent &content)
{
    std::string text;
    for (const auto &[folded, key] : content.Keys())
    {
        text += '\n' + std::string(Root) + PathToBytes(key.path) + "]\n";
        for (const RegistryValue &value : key.values)
        {
            text += FormatValue(value) + '\n';
        }
    }
    // A file without a key would be taken for one that was cut.
    text += content.Keys().empty() ? "\n[HKEY_CURRENT_USER]\n" : "";
    return std::string(Heading) + '\n' + CheckLine(text) + '\n' + text;
}
