#include "settings/StateLine.h"

#include "account/AccountRecord.h"
#include "settings/SettingsStore.h"
#include "tests/doubles/SettingsKey.h"

#include <gtest/gtest.h>

#include <map>

namespace
{
const WideText SettingsLink = TEXT(" <a id=\"settings\" href=\"parameters\">Settings...</a>");

AccountRecord Authorized()
{
    AccountRecord account;
    account.OAuthToken = BstrOwner(TEXT("token"));
    account.OAuthTokenSecret = BstrOwner(TEXT("secret"));
    return account;
}
} // namespace

TEST(StateLine, TellsWhatTheStoredSettingsMean)
{
    const struct
    {
        std::map<WideText, UINT32> numbers;
        const WCHAR *size;
        const WCHAR *line;
    } cases[] = {
        {{},
         nullptr,
         TEXT("Title, description, tags, public, safe, photos, searchable. Resample, send copyright, EXIF, GPS "
              "data.")},
        {{{TEXT("JPEGMode"), 0}},
         TEXT("500 px"),
         TEXT("Title, description, tags, public, safe, photos, searchable. Send JPEG files intact.")},
        {{{TEXT("JPEGMode"), 1},
          {TEXT("WriteDescription"), 0},
          {TEXT("IsPublic"), 0},
          {TEXT("SafetyLevel"), 1},
          {TEXT("ContentType"), 1},
          {TEXT("SearchVisibility"), 1},
          {TEXT("JPEGWriteEXIF"), 0},
          {TEXT("JPEGWriteGPS"), 0},
          {TEXT("JPEGWriteIPTC"), 1}},
         TEXT("500 px"),
         TEXT("Title, tags, private, moderate, screenshots, hidden from search. Send JPEG pixels intact, send "
              "copyright, IPTC data.")},
        {{{TEXT("JPEGMode"), 2},
          {TEXT("WriteTitle"), 0},
          {TEXT("WriteDescription"), 0},
          {TEXT("WriteTags"), 0},
          {TEXT("JPEGWriteCopyright"), 0},
          {TEXT("JPEGWriteEXIF"), 0},
          {TEXT("JPEGWriteGPS"), 0}},
         TEXT("800 px"),
         TEXT("Public, safe, photos, searchable. Resample, downsize to 800 px.")},
        {{},
         TEXT("8\""),
         TEXT("Title, description, tags, public, safe, photos, searchable. Resample, send copyright, EXIF, GPS "
              "data, downscale for 8\" print.")},
        {{{TEXT("JPEGWriteXMP"), 1},
          {TEXT("JPEGWriteIPTC"), 3},
          {TEXT("WriteTitle"), 9},
          {TEXT("SafetyLevel"), 7},
          {TEXT("ContentType"), 7},
          {TEXT("SearchVisibility"), 2},
          {TEXT("IsFriend"), 1},
          {TEXT("IsPublic"), 5}},
         TEXT("20 cm"),
         TEXT("Title, description, tags, public, restricted, other, hidden from search. Resample, send copyright, "
              "EXIF, rating, GPS, IPTC data, downscale for 20 cm print.")},
        {{{TEXT("JPEGWriteCopyright"), 0}, {TEXT("JPEGWriteEXIF"), 0}},
         TEXT("ORIGINAL"),
         TEXT("Title, description, tags, public, safe, photos, searchable. Resample, send GPS data.")},
    };
    for (const auto &[numbers, size, line] : cases)
    {
        SettingsKey key;
        for (const auto &[name, value] : numbers)
        {
            key.Set(name.c_str(), value);
        }
        if (size != nullptr)
        {
            key.Set(TEXT("JPEGLongDimension"), size);
        }
        SettingsBlock block;
        EXPECT_EQ(ComposeDisplayState(Authorized(), block), line + SettingsLink);
    }
}

TEST(StateLine, WithoutTheKeyTheDefaultsShow)
{
    SettingsKey key;
    key.RemoveKey();
    SettingsBlock block;
    EXPECT_EQ(ComposeDisplayState(Authorized(), block),
              TEXT("Title, description, tags, public, safe, photos, searchable. Resample, send copyright, EXIF, "
                   "GPS data.") +
                  SettingsLink);
    EXPECT_TRUE(block.JPEGLongDimension.empty());
}

TEST(StateLine, AsksForWhatTheAccountLacksFirst)
{
    SettingsKey key;
    const WideText permission =
        TEXT("Halvora Professional needs your permission before it can publish images to Flickr. "
             "<a id=\"authorize\" href=\"\">Authorize...</a>");
    const WideText quota = TEXT("Your account is out of monthly quota. Uploads are no longer possible until the "
                                "quota is reset or your "
                                "account is upgraded to remove the limit.") +
                           SettingsLink;
    SettingsBlock block;
    EXPECT_EQ(ComposeDisplayState(AccountRecord(), block), permission);

    AccountRecord account = Authorized();
    account.OAuthTokenSecret = BstrOwner(TEXT(""));
    account.AccountRefreshed = true;
    EXPECT_EQ(ComposeDisplayState(account, block), permission) << "an empty secret is none";

    account = Authorized();
    EXPECT_NE(ComposeDisplayState(account, block), quota) << "nothing left, but nobody has asked yet";
    account.AccountRefreshed = true;
    EXPECT_EQ(ComposeDisplayState(account, block), quota);
    account.UploadLeftThisMonth = 1;
    EXPECT_NE(ComposeDisplayState(account, block), quota);
}

TEST(StateLine, ASizeIsComparedWithTheWordForTheFullSizeWithoutRegardToCase)
{
    SettingsBlock block;
    for (const WCHAR *size : {TEXT(""), TEXT("Original"), TEXT("ORIGINAL")})
    {
        block.JPEGLongDimension = size;
        EXPECT_EQ(SizeSummary(block), WideText());
    }
}
