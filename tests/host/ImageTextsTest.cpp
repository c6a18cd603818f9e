#include "host/ImageTexts.h"

#include "com/BstrOwner.h"

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
    ItemRecord record = {};
    ImageTexts texts;
    texts.title = TEXT("Title");
    texts.keywords = {TEXT("a"), TEXT("b")};
    texts.comment = TEXT("Comment");
    texts.copyright = TEXT("me");
    FillTexts(record, texts);
    const BstrOwner title = BstrOwner::Adopt(record.Iptc.Texts[IPTC_TEXT_CAPTION]);
    const BstrOwner keywords = BstrOwner::Adopt(record.Iptc.Texts[IPTC_TEXT_KEYWORDS]);
    const BstrOwner comment = BstrOwner::Adopt(record.ExifComment);
    const BstrOwner copyright = BstrOwner::Adopt(record.CopyrightTexts[1]);
    EXPECT_EQ(title.View(), TEXT("Title"));
    EXPECT_EQ(keywords.View(), TEXT("a;b"));
    EXPECT_EQ(comment.View(), TEXT("Comment"));
    EXPECT_EQ(copyright.View(), TEXT("me"));
    EXPECT_EQ(record.Iptc.Texts[IPTC_TEXT_DESCRIPTION], nullptr);
    EXPECT_EQ(record.CopyrightTexts[0], nullptr);
}
