// A JPEG picture that a bad disk or a broken transfer spoiled.
#pragma once

#include <algorithm>
#include <cstddef>

// Overwrites a piece of the coded data at one of ten places, with noise and with zeros by turns.
template <class Octets>
Octets DamagedAt(Octets file, size_t place)
{
    using Octet = typename Octets::value_type;
    const Octet scan[] = {static_cast<Octet>(0xFF), static_cast<Octet>(0xDA)};
    const auto data = std::search(file.begin(), file.end(), scan, scan + 2) + 14;
    const auto size = static_cast<size_t>(file.end() - data) - 2;
    unsigned noise = 1;
    std::generate_n(data + static_cast<std::ptrdiff_t>(size * place / 10), size / 20, [&] {
        noise = noise * 1103515245 + 12345;
        return static_cast<Octet>(place % 2 == 0 ? noise >> 16 : 0);
    });
    return file;
}
