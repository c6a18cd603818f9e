#include "terminal/TerminalText.h"

#include "com/SafeText.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(TerminalText, IsMeasuredAndCutAsTheTerminalShowsIt)
{
    EXPECT_EQ(TerminalWidth(u"a\u0301\u6f22\U0001F4F7"), 5u);
    EXPECT_EQ(TerminalWidth(u"\x1B\u202Ex"), 4u) << "as the text that is shown in their place";
    EXPECT_EQ(FitToWidth(u"\u6f22\u6f22\u6f22", 5), u"\u6f22\u6f22");
    EXPECT_EQ(FitToWidth(u"e\u0301e\u0301", 1), u"e\u0301");
    EXPECT_EQ(FitToWidth(u"\u6f22", 1), u"");
    EXPECT_EQ(TerminalLine(u"gr\u00F6\u00DFe e\u0301 \U0001F4F7", false), "gr??e e ?");
}

TEST(TerminalText, IsBrokenWhereItsScriptAllows)
{
    EXPECT_THAT(WrapToWidth(u"one two three", 7), ElementsAre(u"one two", u"three"));
    EXPECT_THAT(WrapToWidth(u"abcdefghij kl", 4), ElementsAre(u"abcd", u"efgh", u"ij", u"kl"));
    EXPECT_THAT(WrapToWidth(u"\u6f22\u6f22\u6f22", 5), ElementsAre(u"\u6f22\u6f22", u"\u6f22"));
    EXPECT_THAT(WrapToWidth(u"one\r\n\ntwo", 7), ElementsAre(u"one", u"", u"two"));
    EXPECT_THAT(WrapToWidth(u"", 4), ElementsAre());
}

TEST(TerminalText, AnIndexStepsOverWholeCharacters)
{
    const std::u16string text = u"a\U0001F4F7b";
    EXPECT_EQ(CharacterBehind(text, 1), 3u);
    EXPECT_EQ(CharacterBehind(text, 4), 4u);
    EXPECT_EQ(CharacterBefore(text, 3), 1u);
    EXPECT_EQ(CharacterBefore(text, 0), 0u);
}

TEST(SafeText, KeepsHalvesOfCharactersAndLineBreaksOut)
{
    EXPECT_EQ(SafeText(u"\xD83D\xDCF7 \xD83D \xDCF7\xD83D"), u"\xD83D\xDCF7 \uFFFD \uFFFD\uFFFD");
    EXPECT_EQ(SafeText(u"a\u2028b\r\nc\td\u2066\u009B"), u"a b c d\uFFFD\uFFFD");
}
