// JSON text, built in order.
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

    // The name of the member whose value comes next.
    JsonWriter &Name(std::string_view name);

    // Bytes that are no UTF-8 become U+FFFD.
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
