// The account record as the host keeps it between two uses of the plug-in. Little-endian, unpadded:
//
//     byte      format marker, 1
//     string    OAuthToken, OAuthTokenSecret, UserName, FullName, PhotosUrl, AccountType
//     int64     MaxFileSize
//
// A string is a 32-bit count of the bytes that follow, and that many bytes: UTF-16 and one zero unit.
// A count of 0 stands for a null string. Token and secret stand there as plain text.
#pragma once

#include <objidl.h>

struct AccountRecord;

// Reads at the stream's present position. Without data (an empty stream, a marker that isn't
// positive) the strings stay and MaxFileSize becomes 0. A failure is thrown: strings read so far
// stay, the one at fault is null, and the stream stands before it.
void ReadInitData(IStream *stream, AccountRecord &account);

// Replaces all that the stream holds. The first failure is thrown, and what was written stays.
void WriteInitData(IStream *stream, const AccountRecord &account);
