// A Huffman table of a JPEG file (T.81, Annex C and F.2.2.3).
#pragma once

#include <windows.h>

#include <array>
#include <vector>

class HuffmanTable
{
public:
    struct Code
    {
        BYTE length = 0; // in bits; 0 where no code begins with the bits
        BYTE symbol = 0;
    };

    // counts: how many codes there are of 1 to 16 bits; symbols: as many as their sum, at most 256. False if there
    // are more codes than so many bits allow.
    bool Build(const BYTE (&counts)[16], const BYTE *symbols) noexcept;
    bool IsBuilt() const noexcept { return m_isBuilt; }

    // Codes for AC coefficients of a sequential picture, as many as RunBits hold with the values behind them.
    static constexpr int RunBits = 13;
    struct Run
    {
        BYTE bits = 0;  // of all of them; 0 where not even one code and its value fit
        BYTE steps = 0; // how many coefficients they tell
        bool endsBlock = false;
    };

    // For each value of the next RunBits bits. Made when it is first asked for.
    const Run *Runs() const;

    // The code at the top of 16 bits.
    Code Find(UINT bits) const noexcept
    {
        const Code code = m_short[bits >> (16 - ShortBits)];
        return code.length != 0 ? code : FindLong(bits);
    }

private:
    static constexpr int ShortBits = 10; // nearly all codes of a photograph are this short or shorter

    Code FindLong(UINT bits) const noexcept;
    Run RunAt(UINT bits) const noexcept;

    std::array<Code, 1 << ShortBits> m_short;
    std::array<UINT, 17> m_end{};    // by length: the first value behind its codes, moved to the top of 16 bits
    std::array<UINT, 17> m_offset{}; // by length: what makes a code an index into the symbols
    std::array<BYTE, 256> m_symbols{};
    mutable std::vector<Run> m_runs;
    bool m_isBuilt = false;
};
