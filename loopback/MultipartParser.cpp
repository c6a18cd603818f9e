#include "loopback/MultipartParser.h"

#include "com/AsciiText.h"

#include <algorithm>

namespace loopback
{

namespace
{

constexpr std::size_t HeaderLimit = 16 * 1024;

// A parameter of a header's value, quoted or bare. A quote or backslash may be escaped by a backslash.
// Browsers write %22 and the like instead; these stay as they are.
std::optional<std::string> Parameter(std::string_view value, const std::string &wanted)
{
    std::size_t at = value.find(';');
    while (at != std::string_view::npos && at < value.size())
    {
        const auto nameBegin = value.find_first_not_of("; \t", at);
        const auto equals = nameBegin == std::string_view::npos ? nameBegin : value.find('=', nameBegin);
        if (equals == std::string_view::npos)
        {
            return std::nullopt;
        }
        const auto name = LowerAscii(value.substr(nameBegin, equals - nameBegin));
        std::string text;
        at = equals + 1;
        if (at < value.size() && value[at] == '"')
        {
            for (++at; at < value.size() && value[at] != '"'; ++at)
            {
                if (value[at] == '\\' && at + 1 < value.size() && (value[at + 1] == '"' || value[at + 1] == '\\'))
                {
                    ++at;
                }
                text += value[at];
            }
            at = value.find(';', at);
        }
        else
        {
            const auto end = std::min(value.find(';', at), value.size());
            text = value.substr(at, end - at);
            text.erase(text.find_last_not_of(" \t") + 1);
            at = end;
        }
        if (name == wanted)
        {
            return text;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> MultipartParser::BoundaryOf(const std::string &contentType)
{
    const std::string kind = LowerAscii(std::string_view(contentType).substr(0, contentType.find(';')));
    if (kind.substr(0, kind.find_last_not_of(" \t") + 1) != "multipart/form-data")
    {
        return std::nullopt;
    }
    auto boundary = Parameter(contentType, "boundary");
    // RFC 2046, 5.1.1: 1 to 70 characters.
    return boundary && !boundary->empty() && boundary->size() <= 70 ? boundary : std::nullopt;
}

MultipartParser::MultipartParser(const std::string &boundary, Sinks sinks)
    // The delimiter includes the line break before it. At the start of the body there may be none, so
    // m_pending supplies it.
    : m_delimiter("\r\n--" + boundary), m_sinks(std::move(sinks)), m_pending("\r\n")
{
}

bool MultipartParser::Feed(std::string_view bytes)
{
    if (!m_error.empty())
    {
        return false;
    }
    if (m_state == State::Epilogue)
    {
        return true;
    }
    m_pending.append(bytes);
    while (Step())
    {
    }
    return m_error.empty();
}

bool MultipartParser::Step()
{
    switch (m_state)
    {
    case State::Preamble:
    case State::Body:
        return StepToDelimiter();
    case State::Delimiter:
        return StepPastDelimiter();
    case State::Header:
        return StepHeader();
    case State::Epilogue:
        m_pending.clear();
        return false;
    }
    return false;
}

bool MultipartParser::StepToDelimiter()
{
    const auto found = m_pending.find(m_delimiter);
    const std::size_t ready = found != std::string::npos ? found
                              : m_pending.size() >= m_delimiter.size()
                                  ? m_pending.size() - (m_delimiter.size() - 1)
                                  : 0;
    if (m_state == State::Body && ready > 0)
    {
        m_sinks.partBytes(std::string_view(m_pending).substr(0, ready));
    }
    if (found == std::string::npos)
    {
        m_pending.erase(0, ready);
        return false;
    }
    m_pending.erase(0, found + m_delimiter.size());
    if (m_state == State::Body)
    {
        m_sinks.endPart();
    }
    m_state = State::Delimiter;
    return true;
}

bool MultipartParser::StepPastDelimiter()
{
    if (m_pending.size() < 2)
    {
        return false;
    }
    const std::string_view mark = std::string_view(m_pending).substr(0, 2);
    if (mark == "--")
    {
        m_state = State::Epilogue;
        return true;
    }
    if (mark != "\r\n")
    {
        return Fail("a boundary is not followed by a line break");
    }
    m_pending.erase(0, 2);
    m_state = State::Header;
    return true;
}

bool MultipartParser::StepHeader()
{
    const auto end = m_pending.find("\r\n\r\n");
    if (end == std::string::npos || end > HeaderLimit)
    {
        return m_pending.size() > HeaderLimit ? Fail("a part's header is too long") : false;
    }
    PartHeader header;
    std::string_view lines = std::string_view(m_pending).substr(0, end + 2);
    bool isFormData = false;
    while (!lines.empty())
    {
        const auto line = lines.substr(0, lines.find("\r\n"));
        lines.remove_prefix(line.size() + 2);
        const auto colon = line.find(':');
        if (colon == std::string_view::npos)
        {
            return Fail("a part's header line has no colon");
        }
        const auto name = LowerAscii(line.substr(0, colon));
        auto value = line.substr(colon + 1);
        value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
        if (name == "content-disposition")
        {
            isFormData = LowerAscii(value).starts_with("form-data");
            header.name = Parameter(value, "name").value_or("");
            header.fileName = Parameter(value, "filename");
        }
        else if (name == "content-type")
        {
            header.contentType = value;
        }
    }
    if (!isFormData || header.name.empty())
    {
        return Fail("a part has no name");
    }
    m_pending.erase(0, end + 4);
    m_state = State::Body;
    m_sinks.beginPart(header);
    return true;
}

bool MultipartParser::Fail(std::string words)
{
    m_error = std::move(words);
    return false;
}

} // namespace loopback
