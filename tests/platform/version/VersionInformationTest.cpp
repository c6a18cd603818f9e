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

class VersionInformation : public testing::Test
{
protected:
    void SetUp() override
    {
        const WideText path = ProgramPath();
        DWORD handle = 1;
        const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &handle);
        ASSERT_GT(size, 0u);
        EXPECT_EQ(handle, 0u);
        m_block.resize(size);
        ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, size, m_block.data()));
    }

    // The value, with the terminator, since its length includes it.
    WideText Text(const WCHAR *path) const
    {
        void *value = nullptr;
        UINT length = 0;
        if (!VerQueryValueW(m_block.data(), path, &value, &length))
        {
            return TEXT("failed");
        }
        return WideText(static_cast<const WCHAR *>(value), length);
    }

    std::vector<BYTE> m_block;
};

WideText Terminated(const WCHAR *text)
{
    return WideText(text) + WCHAR{0};
}

TEST_F(VersionInformation, GivesTextsByPath)
{
    EXPECT_EQ(Text(TEXT("\\StringFileInfo\\040904b0\\FileDescription")),
              Terminated(TEXT("A program of the tests")));
    EXPECT_EQ(Text(TEXT("\\StringFileInfo\\040904B0\\fileversion")), Terminated(TEXT("1.2 (Build 4)")));
    EXPECT_EQ(Text(TEXT("StringFileInfo\\040904B0\\Odd")), Terminated(TEXT("odd")));
}

TEST_F(VersionInformation, GivesTheTranslationAndTheFixedPart)
{
    void *value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(m_block.data(), TEXT("\\VarFileInfo\\Translation"), &value, &length));
    ASSERT_EQ(length, 4u);
    EXPECT_EQ(static_cast<const WORD *>(value)[0], 0x409);
    EXPECT_EQ(static_cast<const WORD *>(value)[1], 1200);
    ASSERT_TRUE(VerQueryValueW(m_block.data(), TEXT("\\"), &value, &length));
    ASSERT_EQ(length, sizeof(VS_FIXEDFILEINFO));
    EXPECT_EQ(static_cast<const VS_FIXEDFILEINFO *>(value)->dwFileVersionLS, DWORD{0x00030004});
}

TEST_F(VersionInformation, WhatIsMissingFails)
{
    EXPECT_EQ(Text(TEXT("\\StringFileInfo\\040904B0\\Nothing")), TEXT("failed"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_RESOURCE_TYPE_NOT_FOUND});
    EXPECT_EQ(Text(TEXT("\\StringFileInfo\\040704B0\\Odd")), TEXT("failed"));
}

TEST_F(VersionInformation, AMissingFileHasNone)
{
    std::vector<BYTE> brief(8);
    EXPECT_FALSE(GetFileVersionInfoW(TEXT("no-such-file.bin"), 0, 8, brief.data()));
    EXPECT_EQ(GetFileVersionInfoSizeW(TEXT("no-such-file.bin"), nullptr), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}
} // namespace
