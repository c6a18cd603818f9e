#include "jpegdata/HuffmanTable.h"

#include <algorithm>

bool HuffmanTable::Build(const BYTE (&counts)[16], const BYTE *symbols) noexcept
{
    m_isBuilt = false;
    m_runs.clear();
    m_short.fill({});
    UINT code = 0; // the next one of the length
    UINT index = 0;
    for (int length = 1; length <= 16; ++length)
    {
        const UINT count = counts[length - 1];
        m_offset[length] = index - code;
        if (code + count > 1u << length || index + count > m_symbols.size())
        {
            return false;
        }
        for (UINT i = 0; i < count; ++i, ++code, ++index)
        {
            m_symbols[index] = symbols[index];
            if (length <= ShortBits)
            {
                std::fill_n(m_short.begin() + (code << (ShortBits - length)), 1 << (ShortBits - length),
                            Code{static_cast<BYTE>(length), symbols[index]});
            }
        }
        m_end[length] = code << (16 - length);
        code <<= 1;
    }
    m_isBuilt = true;
    return true;
}

HuffmanTable::Code HuffmanTable::FindLong(UINT bits) const noexcept
{
    for (int length = ShortBits + 1; length <= 16; ++length)
    {
        if (bits < m_end[length])
        {
            return {static_cast<BYTE>(length), m_symbols[(bits >> (16 - length)) + m_offset[length]]};
        }
    }
    return {};
}

const HuffmanTable::Run *HuffmanTable::Runs() const
{
    if (m_runs.empty())
    {
        m_runs.resize(1 << RunBits);
        for (UINT bits = 0; bits < m_runs.size(); ++bits)
        {
            m_runs[bits] = RunAt(bits);
        }
    }
    return m_runs.data();
}

HuffmanTable::Run HuffmanTable::RunAt(UINT bits) const noexcept
{
    Run run;
    while (!run.endsBlock)
    {
        const Code code = Find(bits << (16 - RunBits + run.bits) & 0xFFFF);
        const int value = code.symbol & 15;
        if (code.length == 0 || run.bits + code.length + value > RunBits)
        {
            break;
        }
        run.bits = static_cast<BYTE>(run.bits + code.length + value);
        run.endsBlock = value == 0 && code.symbol >> 4 != 15;
        run.steps = static_cast<BYTE>(run.steps + (run.endsBlock ? 0 : (code.symbol >> 4) + 1));
    }
    return run;
}
