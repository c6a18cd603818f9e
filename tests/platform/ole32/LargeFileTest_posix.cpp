// Positions beyond 4 GiB. Natively only: Wine 8's file stream counts in 32 bits.
#include "com/ComPtr.h"

#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

TEST(LargeFiles, HavePositionsAndSizesOf64Bits)
{
    const std::filesystem::path name = "large-file-test.bin";
    std::ofstream(name).seekp(5000000000).put('x');
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, SHCreateStreamOnFileW(name.u16string().c_str(), STGM_READ, stream.Put()));
    STATSTG status;
    EXPECT_EQ(S_OK, stream->Stat(&status, STATFLAG_NONAME));
    EXPECT_EQ(5000000001u, status.cbSize.QuadPart);
    LARGE_INTEGER move;
    move.QuadPart = 5000000000;
    char byte = 0;
    ULONG read = 0;
    EXPECT_EQ(S_OK, stream->Seek(move, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(S_OK, stream->Read(&byte, 1, &read));
    EXPECT_EQ('x', byte);
    std::filesystem::remove(name);
}
