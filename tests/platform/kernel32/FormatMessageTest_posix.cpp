// Words for the failures of networks and pictures; on Windows other modules of the system hold these.
#include "com/HandleOwner.h"

#include <windows.h>

#include <gtest/gtest.h>

TEST(FormatMessage, NetworkAndImagingFailuresHaveWords)
{
    for (DWORD code : {0x80004002u, 0x80004003u, 0x80004004u, 0x8000FFFFu, 0x80040154u, 0x800700DFu, 0x80072EE2u,
                       0x80072EE7u, 0x80072EFDu, 0x80072EFFu, 0x80072F7Du, 0x88982F50u, 0x88982F60u, 0x88982F61u})
    {
        LocalTextOwner text;
        constexpr DWORD flags =
            FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
        EXPECT_GT(FormatMessageW(flags, nullptr, code, 0, reinterpret_cast<LPWSTR>(text.Put()), 0, nullptr), 5u)
            << std::hex << code;
    }
}
