#include "com/ComPtr.h"
#include "com/WideText.h"

#include <gmock/gmock.h>
#include <shlwapi.h>

#include <string>

namespace
{
LARGE_INTEGER Move(LONGLONG bytes)
{
    LARGE_INTEGER result;
    result.QuadPart = bytes;
    return result;
}

ULARGE_INTEGER Size(ULONGLONG bytes)
{
    ULARGE_INTEGER result;
    result.QuadPart = bytes;
    return result;
}

ULONGLONG SizeOf(IStream *stream)
{
    STATSTG status{};
    EXPECT_EQ(S_OK, stream->Stat(&status, STATFLAG_NONAME));
    EXPECT_EQ(nullptr, status.pwcsName);
    return status.cbSize.QuadPart;
}

std::string ReadFrom(IStream *stream, LONGLONG position, ULONG bytes)
{
    std::string text(bytes, '?');
    ULONG read = 0;
    EXPECT_EQ(S_OK, stream->Seek(Move(position), STREAM_SEEK_SET, nullptr));
    EXPECT_TRUE(SUCCEEDED(stream->Read(text.data(), bytes, &read)));
    text.resize(read);
    return text;
}

ComPtr<IStream> NewMemoryStream()
{
    ComPtr<IStream> stream;
    EXPECT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()));
    return stream;
}

TEST(MemoryStreams, GrowAndShrinkAndKeepAPosition)
{
    const ComPtr<IStream> stream = NewMemoryStream();
    EXPECT_EQ(0u, SizeOf(stream.Get()));
    ULONG count = 9;
    char byte;
    EXPECT_EQ(S_OK, stream->Read(&byte, 1, &count));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(S_OK, stream->Write("abcdef", 6, &count));
    EXPECT_EQ(6u, count);
    ULARGE_INTEGER position;
    EXPECT_EQ(S_OK, stream->Seek(Move(-2), STREAM_SEEK_CUR, &position));
    EXPECT_EQ(4u, position.QuadPart);
    EXPECT_EQ(STG_E_SEEKERROR, stream->Seek(Move(-1), STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(STG_E_SEEKERROR, stream->Seek(Move(0), 3, nullptr));
    EXPECT_EQ(S_OK, stream->Seek(Move(2), STREAM_SEEK_END, &position));
    EXPECT_EQ(8u, position.QuadPart);
    EXPECT_EQ(S_OK, stream->Write("x", 1, nullptr));
    EXPECT_EQ(9u, SizeOf(stream.Get()));
    EXPECT_EQ(std::string("abcdef", 6), ReadFrom(stream.Get(), 0, 6));
    EXPECT_EQ("x", ReadFrom(stream.Get(), 8, 5));
    EXPECT_EQ(S_OK, stream->SetSize(Size(3)));
    EXPECT_EQ("bc", ReadFrom(stream.Get(), 1, 100));
}

TEST(FileStreams, SayWhyAFileCannotBeOpened)
{
    const struct
    {
        const WCHAR *name;
        HRESULT expected;
    } cases[] = {
        {TEXT("no-such-file.jpg"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)},
        {TEXT("no-such-folder/file.jpg"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
        {TEXT("."), HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED)},
    };
    for (const auto &c : cases)
    {
        ComPtr<IStream> stream;
        EXPECT_EQ(c.expected, SHCreateStreamOnFileW(c.name, STGM_READ | STGM_SHARE_DENY_WRITE, stream.Put()))
            << testing::PrintToString(WideText(c.name));
        EXPECT_FALSE(stream);
    }
}
} // namespace
