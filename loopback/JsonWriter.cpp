#include "loopback/JsonWriter.h"

#include "loopback/Utf8.h"

#include <fmt/format.h>

namespace loopback
{

void JsonWriter::Separate()
{
    if (m_needsComma)
    {
        m_json += ",\n";
    }
    m_needsComma = true;
}

JsonWriter &JsonWriter::Begin(char bracket)
{
    Separate();
    m_json += bracket;
    m_needsComma = false;
    return *this;
}

JsonWriter &JsonWriter::End(char bracket)
{
    m_json += bracket;
    m_needsComma = true;
    return *this;
}

void JsonWriter::Quote(std::string_view text)
{
    m_json += '"';
    for (const char c : RepairUtf8(text))
    {
        if (c == '"' || c == '\\')
        {
            m_json += {'\\', c};
        }
        else if (static_cast<unsigned char>(c) < 0x20)
        {
            m_json += fmt::format("\\u{:04x}", static_cast<int>(c));
        }
        else
        {
            m_json += c;
        }
    }
    m_json += '"';
}

JsonWriter &JsonWriter::Name(std::string_view name)
{
    Separate();
    Quote(name);
    m_json += ": ";
    m_needsComma = false;
    return *this;
}

JsonWriter &JsonWriter::Text(std::string_view text)
{
    Separate();
    Quote(text);
    return *this;
}

JsonWriter &JsonWriter::Number(std::int64_t number)
{
    Separate();
    m_json += std::to_string(number);
    return *this;
}

JsonWriter &JsonWriter::Flag(bool flag)
{
    Separate();
    m_json += flag ? "true" : "false";
    return *this;
}

} // namespace loopback
