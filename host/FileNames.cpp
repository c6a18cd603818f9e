#include "host/FileNames.h"

#include <cstddef>

namespace
{
bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

unsigned char Folded(char c)
{
    return static_cast<unsigned char>(LowerAsciiUnit(c));
}

// Takes the run of digits at the front of text, without its leading zeros.
std::string_view TakeNumber(std::string_view &text)
{
    size_t end = 0;
    while (end < text.size() && IsDigit(text[end]))
    {
        ++end;
    }
    std::string_view number = text.substr(0, end);
    text.remove_prefix(end);
    while (number.size() > 1 && number.front() == '0')
    {
        number.remove_prefix(1);
    }
    return number;
}

// Below, equal to or above 0.
int CompareNumbers(std::string_view left, std::string_view right)
{
    if (left.size() != right.size())
    {
        return left.size() < right.size() ? -1 : 1;
    }
    return left.compare(right);
}
} // namespace

bool NaturallyBefore(std::string_view left, std::string_view right)
{
    std::string_view a = left;
    std::string_view b = right;
    while (!a.empty() && !b.empty())
    {
        if (IsDigit(a.front()) && IsDigit(b.front()))
        {
            if (const int order = CompareNumbers(TakeNumber(a), TakeNumber(b)); order != 0)
            {
                return order < 0;
            }
            continue;
        }
        if (Folded(a.front()) != Folded(b.front()))
        {
            return Folded(a.front()) < Folded(b.front());
        }
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return a.empty() != b.empty() ? a.empty() : left < right;
}
