#include "com/WideText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace
{
const WCHAR *const RawData = MAKEINTRESOURCEW(10);

std::string Read(const WCHAR *name, const WCHAR *type)
{
    const HRSRC resource = FindResourceW(nullptr, name, type);
    if (resource == nullptr)
    {
        return "error " + std::to_string(GetLastError());
    }
    const auto *const data = static_cast<const char *>(LockResource(LoadResource(nullptr, resource)));
    return std::string(data, SizeofResource(nullptr, resource));
}

TEST(Resources, AreFoundByNumberAndByText)
{
    EXPECT_EQ(Read(MAKEINTRESOURCEW(300), RawData), "first");
    EXPECT_EQ(Read(MAKEINTRESOURCEW(301), RawData), "odd");
    EXPECT_EQ(Read(TEXT("#301"), TEXT("#10")), "odd");
    EXPECT_EQ(Read(TEXT("WORDS"), RawData), "by name");
    EXPECT_EQ(Read(TEXT("words"), RawData), "by name");
    EXPECT_EQ(Read(MAKEINTRESOURCEW(7), TEXT("Documents")), "seven");
}

TEST(Resources, WhatIsMissingSaysWhy)
{
    EXPECT_EQ(Read(MAKEINTRESOURCEW(302), RawData), "error " + std::to_string(ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_EQ(Read(MAKEINTRESOURCEW(7), TEXT("NOTHING")),
              "error " + std::to_string(ERROR_RESOURCE_TYPE_NOT_FOUND));
}
} // namespace
