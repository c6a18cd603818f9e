// Builds JSON text, member by member.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace loopback
{

class JsonWriter
{
public:
    JsonWriter &BeginObject() { return Begin('{'); }
    JsonWriter &EndObject() { return End('}'); }
    JsonWriter &BeginArray() { return Begin('['); }
    JsonWriter &EndArray() { return End(']'); }

    // Writes the name of a member; its value must follow.
    JsonWriter &Name(std::string_view name);

    // Bytes that aren't UTF-8 become U+FFFD.
    JsonWriter &Text(std::string_view text);
    JsonWriter &Number(std::int64_t number);
    JsonWriter &Flag(bool flag);

    const std::string &Json() const { return m_json; }

private:
    JsonWriter &Begin(char bracket);
    JsonWriter &End(char bracket);
    void Separate();
    void Quote(std::string_view text);

    std::string m_json;
    bool m_needsComma = false;
};

} // namespace loopback
