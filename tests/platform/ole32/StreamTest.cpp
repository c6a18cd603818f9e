#include "com/ComPtr.h"
#include "com/WideText.h"

#include <shlwapi.h>

#include <gtest/gtest.h>

namespace
{
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
