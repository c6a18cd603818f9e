#include "jpegdata/BlockReading.h"

namespace
{
constexpr int BlockEnd = 64;

[[noreturn]] void ThrowMeaningless()
{
    throw CodedDataError("its coded data has no meaning from some place on");
}

[[noreturn]] void ThrowTooShort()
{
    throw CodedDataError("its coded data breaks off before the picture ends");
}

HuffmanTable::Code TakeCode(CodedData &data, CodedData::Window &window, const HuffmanTable &table)
{
    data.Fill(window);
    const HuffmanTable::Code code = table.Find(window.Top16());
    if (code.length == 0)
    {
        window.count < 16 ? ThrowTooShort() : ThrowMeaningless();
    }
    window.Take(code.length);
    return code;
}

// Of samples of 8 bits no difference takes more (T.81, F.1.2.1.2).
constexpr int MostDcBits = 11;

void TakeDc(CodedData &data, CodedData::Window &window, const HuffmanTable &dc)
{
    const int bits = TakeCode(data, window, dc).symbol;
    if (bits > MostDcBits)
    {
        ThrowMeaningless();
    }
    window.Take(bits);
}

void PutBack(CodedData &data, const CodedData::Window &window)
{
    if (window.count < 0)
    {
        ThrowTooShort();
    }
    data.Bits() = window;
}

// How many blocks the end of a band covers, this one included.
UINT TakeRun(CodedData::Window &window, int exponent)
{
    return (1u << exponent) + window.TakeValue(exponent);
}

void TakeBits(CodedData &data, CodedData::Window &window, int count)
{
    for (int part; count > 0; count -= part)
    {
        data.Fill(window);
        part = std::min(count, 32);
        window.Take(part);
    }
}
} // namespace

void ReadSequentialBlock(CodedData &data, const HuffmanTable &dc, const HuffmanTable &ac)
{
    CodedData::Window window = data.Bits();
    TakeDc(data, window, dc);
    const HuffmanTable::Run *const runs = ac.Runs();
    for (int k = 1; k < BlockEnd;)
    {
        data.Fill(window);
        const HuffmanTable::Run next = runs[window.bits >> (64 - HuffmanTable::RunBits)];
        // Behind the last coefficient there is no code that ends the block.
        if (next.bits != 0 && k + next.steps < BlockEnd)
        {
            window.Take(next.bits);
            k += next.steps;
            if (next.endsBlock)
            {
                break;
            }
            continue;
        }
        const HuffmanTable::Code code = TakeCode(data, window, ac);
        const int run = code.symbol >> 4;
        const int bits = code.symbol & 15;
        if (bits == 0)
        {
            if (run != 15)
            {
                break;
            }
            k += 16;
            continue;
        }
        window.Take(bits);
        k += run + 1;
        if (k > BlockEnd)
        {
            ThrowMeaningless();
        }
    }
    PutBack(data, window);
}

void ReadDcBlock(CodedData &data, const HuffmanTable &dc)
{
    CodedData::Window window = data.Bits();
    TakeDc(data, window, dc);
    PutBack(data, window);
}

void ReadDcBit(CodedData &data)
{
    CodedData::Window window = data.Bits();
    TakeBits(data, window, 1);
    PutBack(data, window);
}

void ReadAcBlock(CodedData &data, const HuffmanTable &ac, const ScanRange &range, UINT &run, NonZero &block)
{
    if (run > 0)
    {
        --run;
        return;
    }
    CodedData::Window window = data.Bits();
    for (int k = range.first; k <= range.last; ++k)
    {
        const HuffmanTable::Code code = TakeCode(data, window, ac);
        const int zeros = code.symbol >> 4;
        const int bits = code.symbol & 15;
        if (bits == 0 && zeros != 15)
        {
            run = TakeRun(window, zeros) - 1;
            break;
        }
        k += zeros;
        if (bits != 0)
        {
            if (k > range.last)
            {
                ThrowMeaningless();
            }
            window.Take(bits);
            block |= NonZero{1} << k;
        }
    }
    PutBack(data, window);
}

// T.81, G.1.2.3: a bit for each coefficient that wasn't zero before, behind the code that passes over it.
void RefineAcBlock(CodedData &data, const HuffmanTable &ac, const ScanRange &range, UINT &run, NonZero &block)
{
    const NonZero band = ~NonZero{0} >> (BlockEnd - 1 - range.last) & ~NonZero{0} << range.first;
    NonZero before = block & band; // those that no code passed over yet
    NonZero zeros = ~block & band;
    if (run > 0 && before == 0)
    {
        --run;
        return;
    }
    CodedData::Window window = data.Bits();
    while (run == 0 && (before | zeros) != 0)
    {
        const HuffmanTable::Code code = TakeCode(data, window, ac);
        const int bits = code.symbol & 15;
        if (bits == 0 && code.symbol >> 4 != 15)
        {
            run = TakeRun(window, code.symbol >> 4);
            break;
        }
        window.Take(bits);
        for (int passed = code.symbol >> 4; passed > 0; --passed)
        {
            zeros &= zeros - 1;
        }
        // The zero that the code tells of, and all in front of it.
        const NonZero told = zeros & (~zeros + 1);
        const NonZero through = told != 0 ? told | (told - 1) : ~NonZero{0};
        TakeBits(data, window, std::popcount(before & through));
        before &= ~through;
        zeros &= ~through;
        if (bits > 1 || (bits != 0 && told == 0))
        {
            ThrowMeaningless();
        }
        block |= bits != 0 ? told : 0;
    }
    if (run > 0)
    {
        TakeBits(data, window, std::popcount(before));
        --run;
    }
    PutBack(data, window);
}
