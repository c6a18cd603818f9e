// Parses a multipart/form-data body (RFC 7578) as it arrives, without holding more of it than a part's
// header or one piece. Strict: a body that isn't well formed is an error.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace loopback
{

struct PartHeader
{
    std::string name;
    // Absent for ordinary fields. As sent, unchecked.
    std::optional<std::string> fileName;
    std::string contentType;
};

class MultipartParser
{
public:
    struct Sinks
    {
        std::function<void(const PartHeader &)> beginPart;
        std::function<void(std::string_view)> partBytes;
        std::function<void()> endPart;
    };

    // The boundary of a Content-Type value; nullopt if that isn't multipart/form-data.
    static std::optional<std::string> BoundaryOf(const std::string &contentType);

    MultipartParser(const std::string &boundary, Sinks sinks);

    // Returns false from the first error on.
    bool Feed(std::string_view bytes);

    // Whether the closing delimiter has been read.
    bool IsComplete() const { return m_state == State::Epilogue; }

    // The error message; empty if there is none.
    const std::string &Error() const { return m_error; }

private:
    enum class State
    {
        Preamble,
        Delimiter,
        Header,
        Body,
        Epilogue
    };

    bool Step();
    bool StepToDelimiter();
    bool StepPastDelimiter();
    bool StepHeader();
    bool Fail(std::string words);

    std::string m_delimiter;
    Sinks m_sinks;
    State m_state = State::Preamble;
    std::string m_pending;
    std::string m_error;
};

} // namespace loopback
