#include "settings/SettingsStore.h"

#include "tests/doubles/SettingsKey.h"

#include <gtest/gtest.h>

namespace
{
std::vector<BYTE> TextBytes(const WideText &text)
{
    const auto *bytes = reinterpret_cast<const BYTE *>(text.data());
    return std::vector<BYTE>(bytes, bytes + text.size() * sizeof(WCHAR));
}
} // namespace

TEST(SettingsStore, WithoutTheKeyTheBlockStaysAsItIs)
{
    SettingsKey key;
    key.RemoveKey();
    SettingsBlock block;
    block.JPEG.WriteXMP = 7;
    block.RAWLongDimension = TEXT("kept");
    LoadSettings(block);
    EXPECT_EQ(block.JPEGMode, 2u);
    EXPECT_EQ(block.JPEG.WriteXMP, 7u);
    EXPECT_EQ(block.JPEG.LongEdgePixels, 0u);
    EXPECT_TRUE(block.JPEGLongDimension.empty());
    EXPECT_EQ(block.RAWLongDimension, TEXT("kept"));
    EXPECT_EQ(SettingsReader().Number(TEXT("WriteTags")), 1u);
}

TEST(SettingsStore, AnEmptyKeyGivesTheDefaults)
{
    SettingsKey key;
    SettingsBlock block;
    LoadSettings(block);
    EXPECT_EQ(block.JPEGMode, 2u);
    for (const ConversionSettings &conversion : {block.JPEG, block.RAW})
    {
        EXPECT_EQ(conversion.Minimize, 1u);
        EXPECT_EQ(conversion.WriteCopyright, 1u);
        EXPECT_EQ(conversion.WriteEXIF, 1u);
        EXPECT_EQ(conversion.WriteXMP, 0u);
        EXPECT_EQ(conversion.WriteGPS, 1u);
        EXPECT_EQ(conversion.WriteIPTC, 0u);
    }
    for (const WideText &size : {block.JPEGLongDimension, block.RAWLongDimension})
    {
        EXPECT_EQ(size, TEXT("Original"));
    }
    EXPECT_EQ(block.JPEG.LongEdgePixels + block.RAW.LongEdgePixels, 0u);
}

TEST(SettingsStore, EachValueReachesItsOwnFieldClampedOrFolded)
{
    static constexpr const WCHAR *Flags[] = {TEXT("Minimize"), TEXT("WriteCopyright"), TEXT("WriteEXIF"),
                                             TEXT("WriteXMP"), TEXT("WriteGPS"),       TEXT("WriteIPTC")};
    static constexpr UINT32 ConversionSettings::*Fields[] = {
        &ConversionSettings::Minimize, &ConversionSettings::WriteCopyright, &ConversionSettings::WriteEXIF,
        &ConversionSettings::WriteXMP, &ConversionSettings::WriteGPS,       &ConversionSettings::WriteIPTC};
    for (const bool raw : {false, true})
    {
        for (size_t set = 0; set < std::size(Flags); ++set)
        {
            SettingsKey key;
            for (size_t i = 0; i < std::size(Flags); ++i)
            {
                key.Set((WideText(raw ? TEXT("RAW") : TEXT("JPEG")) + Flags[i]).c_str(), i == set ? 5u : 0u);
            }
            SettingsBlock block;
            LoadSettings(block);
            for (size_t i = 0; i < std::size(Flags); ++i)
            {
                EXPECT_EQ((raw ? block.RAW : block.JPEG).*Fields[i], i == set ? 1u : 0u);
            }
        }
    }
    const struct
    {
        UINT32 stored;
        UINT32 loaded;
    } modes[] = {{0, 0}, {1, 1}, {2, 2}, {3, 2}, {7, 2}, {0xFFFFFFFF, 2}};
    for (const auto &[stored, loaded] : modes)
    {
        SettingsKey key;
        key.Set(TEXT("JPEGMode"), stored);
        SettingsBlock block;
        LoadSettings(block);
        EXPECT_EQ(block.JPEGMode, loaded);
    }
}

TEST(SettingsStore, OutputSizesAreLoadedInTheirDisplayForm)
{
    const struct
    {
        DWORD type;
        WideText bytes;
        const WCHAR *text;
        UINT32 pixels;
        double dpi = 300;
    } cases[] = {
        {REG_SZ, WideText(TEXT("800px\0"), 6), TEXT("800 px"), 800},
        {REG_EXPAND_SZ, WideText(TEXT("30 inches\0"), 10), TEXT("30\" print"), 5400, 180},
        {REG_SZ, WideText(), TEXT("Original"), 0},
        {REG_SZ, WideText(31, '0') + TEXT("64"), TEXT("Original"), 0},
        // Without a closing zero; of another type, for the system adds one to a text that lacks it.
        {REG_BINARY, TEXT("640"), TEXT("640 px"), 640},
        {REG_BINARY, WideText(30, '0') + TEXT("64"), TEXT("6 px"), 6},
        {REG_SZ, WideText(40, '1'), TEXT("Original"), 0},
        {REG_SZ, WideText(TEXT("huge\0"), 5), TEXT("Original"), 0},
    };
    for (const auto &[type, bytes, text, pixels, dpi] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(bytes));
        SettingsKey key;
        key.SetBytes(TEXT("JPEGLongDimension"), type, TextBytes(bytes));
        key.Set(TEXT("RAWLongDimension"), TEXT("10cm"));
        SettingsBlock block;
        LoadSettings(block);
        EXPECT_EQ(block.JPEGLongDimension, text);
        EXPECT_EQ(block.JPEG.LongEdgePixels, pixels);
        EXPECT_EQ(block.JPEG.PrintDpi, dpi);
        EXPECT_EQ(block.RAWLongDimension, TEXT("10 cm print"));
        EXPECT_EQ(block.RAW.LongEdgePixels, 1299u);
        EXPECT_EQ(block.RAW.PrintDpi, 330.0);
    }
}

TEST(SettingsStore, AValueThatGoesAwayKeepsWhatWasLoadedLast)
{
    SettingsKey key;
    key.Set(TEXT("JPEGWriteEXIF"), 0u);
    key.Set(TEXT("JPEGLongDimension"), TEXT("500"));
    SettingsBlock block;
    LoadSettings(block);
    key.Remove(TEXT("JPEGWriteEXIF"));
    key.Remove(TEXT("JPEGLongDimension"));
    LoadSettings(block);
    EXPECT_EQ(block.JPEG.WriteEXIF, 0u);
    EXPECT_EQ(block.JPEGLongDimension, TEXT("Original"));
}

TEST(SettingsStore, AValueTooLongForANumberReadsAsMissing)
{
    SettingsKey key;
    key.SetBytes(TEXT("SafetyLevel"), REG_QWORD, std::vector<BYTE>(8, 1));
    key.SetBytes(TEXT("WriteTitle"), REG_QWORD, std::vector<BYTE>(8, 0));
    key.Set(TEXT("ContentType"), 7u);
    const SettingsReader reader;
    EXPECT_TRUE(reader.IsOpen());
    EXPECT_EQ(reader.Number(TEXT("SafetyLevel")), 0u);
    EXPECT_EQ(reader.Number(TEXT("WriteTitle")), 1u);
    EXPECT_EQ(reader.Number(TEXT("ContentType")), 7u) << "as stored, whatever the range";
}
