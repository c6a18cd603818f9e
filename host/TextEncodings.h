// Conversion between UTF-16 and the encodings of text in files. Throws only std::bad_alloc; bytes that
// fit no encoding become U+FFFD.
#pragma once

#include "com/TextConversion.h"

#include <optional>
#include <string>
#include <string_view>

enum class ByteOrder16
{
    LittleEndian,
    BigEndian
};

// nullopt if the bytes are no valid UTF-8.
std::optional<WideText> TextFromUtf8(std::string_view bytes);

// UTF-8 if the bytes are valid as such, else Windows-1252, the superset of Latin-1 that cameras and
// editors wrote before UTF-8.
WideText TextFromUtf8OrLatin(std::string_view bytes);

// UTF-16 without a length; an odd last byte is dropped, a byte order mark decides and is dropped.
WideText TextFromUtf16(std::string_view bytes, ByteOrder16 order);

// As TextFromUtf16, for writers that disagree with their own file about the byte order: the order
// in which more units look like Latin text wins, and expected where neither does.
WideText TextFromUtf16Guessing(std::string_view bytes, ByteOrder16 expected);

// ISO-2022-JP, or bare JIS X 0208 rows without escapes, or Shift_JIS.
WideText TextFromJis(std::string_view bytes);

// As ToUtf8.
inline std::string Utf8FromText(WideView text)
{
    return ToUtf8(text);
}

// Cuts the text at its first NUL and strips white space from the end.
WideText WithoutPadding(WideText text);

// The character sets of files other than UTF-8.
enum class Charset
{
    Windows1252,
    Iso2022Jp,
    ShiftJis,
    EucJp
};

enum class Faults
{
    Refuse, // nullopt for bytes that aren't valid
    Replace // by U+FFFD
};

// By the system or its library. Also nullopt if the system lacks the character set.
std::optional<WideText> TextFromCharset(Charset charset, std::string_view bytes, Faults faults);
