#include "com/HandleOwner.h"
#include "com/WideText.h"
#include "tests/platform/KnownGaps.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace
{
WideText MessageOf(DWORD code)
{
    LocalTextOwner text;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, code, LANG_USER_DEFAULT, reinterpret_cast<LPWSTR>(text.Put()), 0, nullptr);
    return length > 0 ? WideText(text.Get(), length) : WideText();
}

TEST(FormatMessage, SystemMessagesEndInAFullStopAndALineBreak)
{
    for (HRESULT code : {HRESULT{ERROR_FILE_NOT_FOUND}, HRESULT{ERROR_ACCESS_DENIED}, HRESULT{ERROR_DISK_FULL},
                         E_FAIL, E_NOTIMPL, E_OUTOFMEMORY, E_INVALIDARG})
    {
        const WideText message = MessageOf(code);
        ASSERT_GT(message.size(), 3u) << std::hex << code;
        EXPECT_EQ(message.substr(message.size() - 3), TEXT(".\r\n")) << std::hex << code;
    }
}

TEST(FormatMessage, AWin32FailureReadsLikeItsError)
{
    EXPECT_EQ(MessageOf(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)), MessageOf(ERROR_FILE_NOT_FOUND));
    EXPECT_NE(MessageOf(ERROR_FILE_NOT_FOUND), MessageOf(ERROR_PATH_NOT_FOUND));
}

TEST(FormatMessage, AnUnknownCodeHasNoMessage)
{
    SetLastError(0);
    EXPECT_EQ(MessageOf(0x87654321), WideText());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MR_MID_NOT_FOUND});
}

TEST(FormatMessage, NetworkAndImagingFailuresHaveWordsNatively)
{
    if (IsWindowsBuild && !UnderWine)
    {
        GTEST_SKIP() << "Windows keeps most of these in other modules; the table of Wine lacks the rest.";
    }
    for (DWORD code : {0x80004002u, 0x80004003u, 0x80004004u, 0x8000FFFFu, 0x80040154u, 0x800700DFu, 0x80072EE2u,
                       0x80072EE7u, 0x80072EFDu, 0x80072EFFu, 0x80072F7Du, 0x88982F50u, 0x88982F60u, 0x88982F61u})
    {
        EXPECT_EQ(MessageOf(code).empty(), UnderWine) << std::hex << code;
    }
}
} // namespace
