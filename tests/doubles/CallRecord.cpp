#include "tests/doubles/CallRecord.h"

std::string Narrow(WideView text)
{
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i)
    {
        UINT32 code = static_cast<UINT16>(text[i]);
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < text.size())
        {
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<UINT16>(text[++i]) - 0xDC00);
        }
        if (code < 0x80)
        {
            bytes += static_cast<char>(code);
            continue;
        }
        const int following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        bytes += static_cast<char>((0xFF00 >> (following + 1) & 0xFF) | code >> (6 * following));
        for (int shift = 6 * (following - 1); shift >= 0; shift -= 6)
        {
            bytes += static_cast<char>(0x80 | (code >> shift & 0x3F));
        }
    }
    return bytes;
}

void CallRecord::Add(std::string line)
{
    const std::lock_guard guard(m_lock);
    m_lines.push_back(std::move(line));
}

std::vector<std::string> CallRecord::Lines() const
{
    const std::lock_guard guard(m_lock);
    return m_lines;
}

std::vector<std::string> CallRecord::LinesOf(const std::string &prefix) const
{
    std::vector<std::string> found;
    for (const std::string &line : Lines())
    {
        if (line.starts_with(prefix))
        {
            found.push_back(line.substr(prefix.size()));
        }
    }
    return found;
}

void CallRecord::Clear()
{
    const std::lock_guard guard(m_lock);
    m_lines.clear();
}
