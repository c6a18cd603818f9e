#include "host/ImageTexts.h"

#include "publish/ItemRecord.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(ImageTexts, KeywordsStayWhatTheyAreInTheJoinedList)
{
    EXPECT_EQ(JoinKeywords({TEXT("sea"), TEXT(" New York "), TEXT(""), TEXT("a;b"), TEXT("  ")}),
              TEXT("sea;New York;a,b"));
    EXPECT_EQ(JoinKeywords({}), TEXT(""));
    EXPECT_THAT(SplitKeywords(TEXT("; a ;b c;;")), ElementsAre(TEXT("a"), TEXT("b c")));
}

TEST(ImageTexts, AbsentTextsStayNullInTheRecord)
{
    ItemRecordOwner owner;
    ItemRecord &record = *owner.Get();
    ImageTexts texts;
    texts.title = TEXT("Title");
    texts.keywords = {TEXT("a"), TEXT("b")};
    texts.comment = TEXT("Comment");
    texts.copyright = TEXT("me");
    FillTexts(record, texts);
    EXPECT_EQ(WideView(record.Iptc.Texts[IPTC_TEXT_CAPTION]), TEXT("Title"));
    EXPECT_EQ(WideView(record.Iptc.Texts[IPTC_TEXT_KEYWORDS]), TEXT("a;b"));
    EXPECT_EQ(WideView(record.ExifComment), TEXT("Comment"));
    EXPECT_EQ(WideView(record.CopyrightTexts[1]), TEXT("me"));
    EXPECT_EQ(record.Iptc.Texts[IPTC_TEXT_DESCRIPTION], nullptr);
    EXPECT_EQ(record.CopyrightTexts[0], nullptr);
}
