// The calls that a set of fakes received, in order, as lines of text. Any thread.
#pragma once

#include "com/WideText.h"

#include <mutex>
#include <string>
#include <vector>

// UTF-8 of a text, for lines and for messages of failed tests.
std::string Narrow(WideView text);

class CallRecord
{
public:
    void Add(std::string line);
    std::vector<std::string> Lines() const;

    // The lines that begin with a prefix, without it.
    std::vector<std::string> LinesOf(const std::string &prefix) const;
    void Clear();

private:
    mutable std::mutex m_lock;
    std::vector<std::string> m_lines;
};
