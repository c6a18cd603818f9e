// The application's own consumer key and secret. They lie in read-only data in a sealed form; the plain
// form exists only between an open and its close, in a heap buffer that is wiped before it is freed.
#pragma once

#include <windows.h>

// Head of a sealed value; its bytes follow. Little-endian.
struct SecuredString
{
    UINT32 lengthWord; // bits 0 to 30: bytes of the value, its closing zero included; bit 31 is set
    UINT32 maskWord;
    UINT64 reserved; // never read
};

template <UINT32 Length>
struct SecuredRecord
{
    SecuredString Head;
    BYTE Data[Length];
};

// 32 and 16 wide characters, each with its closing zero. Sealed while the system is built.
extern const SecuredRecord<66> ApplicationKey;
extern const SecuredRecord<34> ApplicationSecret;

// The plain form, valid until the matching close. Overlapping opens of one record share one buffer. Any
// thread; std::bad_alloc is thrown.
const WCHAR *OpenSecuredString(const SecuredString &record);

// Ends one open; the last one wipes the buffer and frees it. A record that isn't open is ignored. Any thread.
void CloseSecuredString(const SecuredString &record) noexcept;
