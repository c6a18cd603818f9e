#include "host/InitData.h"

#include "com/Checksum.h"

#include <algorithm>
#include <array>

namespace
{
constexpr char FormatMarker = 1;
constexpr std::string_view FileMarker = "HVRA"; // no content begins with it
constexpr uint32_t LongestText = 0x100000;      // bytes, as the plug-in allows

using TextField = std::optional<WideText> AccountData::*;
constexpr std::array<TextField, 6> TextFields = {&AccountData::token,     &AccountData::tokenSecret,
                                                 &AccountData::userName,  &AccountData::fullName,
                                                 &AccountData::photosUrl, &AccountData::accountType};

class Reader
{
public:
    explicit Reader(std::string_view bytes) : m_bytes(bytes) {}

    bool IsWhole() const { return m_whole; }
    bool IsAtEnd() const { return m_bytes.empty(); }

    uint64_t Number(size_t size)
    {
        uint64_t value = 0;
        const std::string_view bytes = Take(size);
        for (size_t i = bytes.size(); i > 0; --i)
        {
            value = value << 8 | static_cast<unsigned char>(bytes[i - 1]);
        }
        return value;
    }

    std::optional<WideText> Text()
    {
        const auto size = static_cast<uint32_t>(Number(4));
        if (size == 0)
        {
            return std::nullopt;
        }
        m_whole = m_whole && size % 2 == 0 && size <= LongestText;
        const std::string_view bytes = m_whole ? Take(size) : std::string_view();
        if (bytes.empty())
        {
            return std::nullopt;
        }
        WideText text;
        for (size_t i = 0; i < bytes.size(); i += 2)
        {
            text += static_cast<WCHAR>(static_cast<unsigned char>(bytes[i]) |
                                       static_cast<unsigned char>(bytes[i + 1]) << 8);
        }
        m_whole = text.back() == 0;
        text.pop_back();
        return text;
    }

private:
    std::string_view Take(size_t size)
    {
        m_whole = m_whole && m_bytes.size() >= size;
        const std::string_view taken = m_whole ? m_bytes.substr(0, size) : std::string_view();
        m_bytes.remove_prefix(taken.size());
        return taken;
    }

    std::string_view m_bytes;
    bool m_whole = true;
};

void AppendNumber(std::string &bytes, uint64_t value, size_t size)
{
    for (size_t i = 0; i < size; ++i)
    {
        bytes += static_cast<char>(value >> (8 * i));
    }
}

void AppendText(std::string &bytes, const std::optional<WideText> &text)
{
    if (!text)
    {
        AppendNumber(bytes, 0, 4);
        return;
    }
    AppendNumber(bytes, text->size() * 2 + 2, 4);
    for (const WCHAR unit : *text)
    {
        AppendNumber(bytes, static_cast<uint16_t>(unit), 2);
    }
    AppendNumber(bytes, 0, 2);
}
} // namespace

bool AccountData::IsAuthorized() const
{
    return token && !token->empty() && tokenSecret && !tokenSecret->empty();
}

std::optional<AccountData> ParseInitData(std::string_view bytes)
{
    AccountData account;
    if (bytes.empty())
    {
        return account;
    }
    Reader reader(bytes);
    if (reader.Number(1) != FormatMarker)
    {
        return std::nullopt;
    }
    for (const TextField field : TextFields)
    {
        account.*field = reader.Text();
    }
    account.maxFileSize = static_cast<int64_t>(reader.Number(8));
    return reader.IsWhole() && reader.IsAtEnd() ? std::optional(account) : std::nullopt;
}

std::string ComposeInitData(const AccountData &account)
{
    std::string bytes(1, FormatMarker);
    for (const TextField field : TextFields)
    {
        AppendText(bytes, account.*field);
    }
    AppendNumber(bytes, static_cast<uint64_t>(account.maxFileSize), 8);
    return bytes;
}

std::string ComposeInitDataFile(std::string_view content)
{
    std::string file(FileMarker);
    AppendNumber(file, content.size(), 4);
    AppendNumber(file, Crc32(content), 4);
    return file.append(content);
}

std::optional<std::string> ParseInitDataFile(std::string_view file)
{
    std::string_view content = file;
    if (file.starts_with(FileMarker))
    {
        content.remove_prefix(std::min(FileMarker.size() + 8, file.size()));
        if (file != ComposeInitDataFile(content))
        {
            return std::nullopt;
        }
    }
    return !file.empty() && ParseInitData(content) ? std::optional(std::string(content)) : std::nullopt;
}
