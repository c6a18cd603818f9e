// Positions beyond 4 GiB. Natively only: Wine 8's file stream counts in 32 bits.
#include "com/ComPtr.h"

#include <gtest/gtest.h>
#include <shlwapi.h>

#include <cstdio>

TEST(LargeFiles, HavePositionsAndSizesOf64Bits)
{
    const char *const name = "large-file-test.bin";
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK,
              SHCreateStreamOnFileW(TEXT("large-file-test.bin"), STGM_READWRITE | STGM_CREATE, stream.Put()));
    LARGE_INTEGER move;
    move.QuadPart = 5000000000;
    ULARGE_INTEGER position;
    EXPECT_EQ(S_OK, stream->Seek(move, STREAM_SEEK_SET, &position));
    EXPECT_EQ(5000000000u, position.QuadPart);
    EXPECT_EQ(S_OK, stream->Write("x", 1, nullptr));
    STATSTG status;
    EXPECT_EQ(S_OK, stream->Stat(&status, STATFLAG_NONAME));
    EXPECT_EQ(5000000001u, status.cbSize.QuadPart);
    char byte = 0;
    ULONG read = 0;
    stream->Seek(move, STREAM_SEEK_SET, nullptr);
    EXPECT_EQ(S_OK, stream->Read(&byte, 1, &read));
    EXPECT_EQ(1u, read);
    EXPECT_EQ('x', byte);
    std::remove(name);
}
