#pragma once

#include <cstdint>
#include <ctime>
#include <string>

// Seconds since 1970 as the day and minute of the user's clock, such as "2026-03-01 17:05".
inline std::string LocalTime(std::int64_t seconds)
{
    const auto time = static_cast<std::time_t>(seconds);
    // One thread of a host asks for the time.
    const std::tm *const parts = std::localtime(&time);
    std::string text(16, '-');
    if (parts != nullptr)
    {
        text.resize(std::strftime(text.data(), text.size() + 1, "%Y-%m-%d %H:%M", parts));
    }
    return text;
}
