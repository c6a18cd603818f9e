// The account record as the host keeps it between two uses of the plug-in. Little-endian, unpadded:
//
//     byte      format marker, 1
//     string    OAuthToken, OAuthTokenSecret, UserName, FullName, PhotosUrl, AccountType
//     int64     MaxFileSize
//
// A string is a 32-bit count of the bytes that follow, and that many bytes: UTF-16 and one zero unit.
// A count of 0 stands for a null string. Token and secret are stored as plain text.
#pragma once

#include <objidl.h>

struct AccountRecord;

// Reads from the stream's present position. Without data (an empty stream, a marker that isn't positive)
// the strings stay and MaxFileSize becomes 0. A failure is thrown: strings read so far stay, the string that
// failed is null, and the stream stands at its start.
void ReadInitData(IStream *stream, AccountRecord &account);

// Replaces the stream's whole content. The first failure is thrown; bytes written before it stay.
void WriteInitData(IStream *stream, const AccountRecord &account);
