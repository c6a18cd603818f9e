#include "host/ImageTexts.h"

#include "core/BstrOwner.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(ImageTexts, KeywordsStayWhatTheyAreInTheJoinedList)
{
    EXPECT_EQ(JoinKeywords({u"sea", u" New York ", u"", u"a;b", u"  "}), u"sea;New York;a,b");
    EXPECT_EQ(JoinKeywords({}), u"");
    EXPECT_THAT(SplitKeywords(u"; a ;b c;;"), ElementsAre(u"a", u"b c"));
}

TEST(ImageTexts, AbsentTextsStayNullInTheRecord)
{
    ItemRecord record = {};
    ImageTexts texts;
    texts.title = u"Title";
    texts.keywords = {u"a", u"b"};
    texts.comment = u"Comment";
    texts.copyright = u"me";
    FillTexts(record, texts);
    const BstrOwner title = BstrOwner::Adopt(record.Iptc.Texts[IPTC_TEXT_CAPTION]);
    const BstrOwner keywords = BstrOwner::Adopt(record.Iptc.Texts[IPTC_TEXT_KEYWORDS]);
    const BstrOwner comment = BstrOwner::Adopt(record.ExifComment);
    const BstrOwner copyright = BstrOwner::Adopt(record.CopyrightTexts[1]);
    EXPECT_EQ(title.View(), u"Title");
    EXPECT_EQ(keywords.View(), u"a;b");
    EXPECT_EQ(comment.View(), u"Comment");
    EXPECT_EQ(copyright.View(), u"me");
    EXPECT_EQ(record.Iptc.Texts[IPTC_TEXT_DESCRIPTION], nullptr);
    EXPECT_EQ(record.CopyrightTexts[0], nullptr);
}
