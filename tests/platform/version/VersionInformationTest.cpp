#include "com/WideText.h"

#include <windows.h>
#include <winver.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{
WideText ProgramPath()
{
    WCHAR path[1024];
    return WideText(path, GetModuleFileNameW(nullptr, path, ARRAYSIZE(path)));
}

// The value, with the terminator, since its length includes it.
WideText TextAt(const std::vector<BYTE> &block, const WCHAR *path)
{
    void *value = nullptr;
    UINT length = 0;
    return VerQueryValueW(block.data(), path, &value, &length)
               ? WideText(static_cast<const WCHAR *>(value), length)
               : TEXT("failed");
}
} // namespace

TEST(VersionInformation, GivesTextsAndNumbersByPath)
{
    const WideText path = ProgramPath();
    std::vector<BYTE> block(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
    const WideText description(TEXT("A program of the tests\0"), 23);
    EXPECT_EQ(TextAt(block, TEXT("\\StringFileInfo\\040904b0\\FileDescription")), description);
    EXPECT_EQ(TextAt(block, TEXT("StringFileInfo\\040904B0\\FILEdescription")), description);
    EXPECT_EQ(TextAt(block, TEXT("\\StringFileInfo\\040704B0\\Odd")), TEXT("failed"));
    EXPECT_EQ(TextAt(block, TEXT("\\StringFileInfo\\040904B0\\Nothing")), TEXT("failed"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_RESOURCE_TYPE_NOT_FOUND});
    void *value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), TEXT("\\VarFileInfo\\Translation"), &value, &length));
    ASSERT_EQ(length, 4u);
    EXPECT_EQ(static_cast<const WORD *>(value)[0], 0x409);
}

TEST(VersionInformation, AMissingFileHasNone)
{
    EXPECT_EQ(GetFileVersionInfoSizeW(TEXT("no-such-file.bin"), nullptr), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}
