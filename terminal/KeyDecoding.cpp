#include "terminal/KeyDecoding.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace
{
struct ControlMeaning
{
    char Byte;
    Key Meaning;
};
constexpr ControlMeaning Controls[] = {
    {'\t', Key::Tab},         {'\r', Key::Enter},       {'\n', Key::Enter},       {'\b', Key::Backspace},
    {'\x7F', Key::Backspace}, {'\x15', Key::EraseLine}, {'\x03', Key::Interrupt}, {'\x04', Key::EndOfInput},
};

struct SequenceMeaning
{
    std::string_view Bytes; // after Escape
    Key Meaning;
};
constexpr SequenceMeaning Sequences[] = {
    {"[A", Key::Up},
    {"OA", Key::Up},
    {"[B", Key::Down},
    {"OB", Key::Down},
    {"[C", Key::Right},
    {"OC", Key::Right},
    {"[D", Key::Left},
    {"OD", Key::Left},
    {"[H", Key::Home},
    {"OH", Key::Home},
    {"[1~", Key::Home},
    {"[7~", Key::Home},
    {"[F", Key::End},
    {"OF", Key::End},
    {"[4~", Key::End},
    {"[8~", Key::End},
    {"[5~", Key::PageUp},
    {"[6~", Key::PageDown},
    {"[5;5~", Key::PreviousPage},
    {"[6;5~", Key::NextPage},
    {"[3~", Key::Delete},
    {"[Z", Key::BackTab},
    {"OS", Key::OpenList},
    {"[14~", Key::OpenList},
    {"[[D", Key::OpenList},
};

// Of "[<BUTTON;COLUMN;ROW" and M for a press, m for a release.
Input DecodeMouse(const std::string &sequence)
{
    int button = -1;
    Input input;
    char kind = 0;
    if (std::sscanf(sequence.c_str(), "[<%4d;%4d;%4d%c", &button, &input.Column, &input.Row, &kind) == 4 &&
        kind == 'M')
    {
        input.What = button == 0    ? Key::Click
                     : button == 64 ? Key::WheelUp
                     : button == 65 ? Key::WheelDown
                                    : Key::None;
    }
    --input.Column;
    --input.Row;
    return input;
}

// A sequence ends with its first letter or "~"; those of a Linux console have a second "[" first.
Input DecodeEscape(const NextByte &next)
{
    const std::optional<char> opening = next();
    if (!opening)
    {
        return {Key::Escape};
    }
    std::string sequence(1, *opening);
    if (*opening == '[' || *opening == 'O')
    {
        for (auto byte = next(); byte; byte = next())
        {
            sequence += *byte;
            if (*byte >= '@' && *byte <= '~' && sequence != "[[")
            {
                break;
            }
        }
    }
    for (const SequenceMeaning &known : Sequences)
    {
        if (known.Bytes == sequence)
        {
            return {known.Meaning};
        }
    }
    return sequence.starts_with("[<") ? DecodeMouse(sequence) : Input();
}

// None for bytes that are no character.
Input DecodeCharacter(unsigned char lead, const NextByte &next)
{
    const int following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    constexpr unsigned char LeadBits[] = {0x7F, 0x1F, 0x0F, 0x07};
    char32_t character = lead & LeadBits[following];
    bool isWhole = lead < 0x80 || following > 0;
    for (int i = 0; isWhole && i < following; ++i)
    {
        const auto byte = next();
        isWhole = byte && (*byte & 0xC0) == 0x80;
        character = character << 6 | (byte.value_or(0) & 0x3F);
    }
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return isWhole && !isSurrogate && character <= 0x10FFFF ? Input{Key::Character, character} : Input();
}
} // namespace

Input DecodeKey(char first, const NextByte &next)
{
    if (first == '\x1B')
    {
        return DecodeEscape(next);
    }
    for (const ControlMeaning &control : Controls)
    {
        if (control.Byte == first)
        {
            return {control.Meaning};
        }
    }
    const auto byte = static_cast<unsigned char>(first);
    return byte < 0x20 ? Input() : DecodeCharacter(byte, next);
}
