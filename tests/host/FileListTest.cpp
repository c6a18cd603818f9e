#include "host/FileList.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(FileList, TakesNamesAndWhatIsLeftOfARun)
{
    using namespace std::string_literals;
    EXPECT_THAT(FilesOfList("a.jpg\nfolder/b c.jpg\n\nlast", '\n'),
                ElementsAre("a.jpg", "folder/b c.jpg", "last"));
    EXPECT_THAT(FilesOfList("one\nline\0two\0"s, '\0'), ElementsAre("one\nline", "two"));
    EXPECT_THAT(FilesOfList("a\tb.jpg\nnot-tried\ta.jpg\t\t\nx\ty\tz\tw", '\n'),
                ElementsAre("a\tb.jpg", "a.jpg", "x\ty\tz\tw"));
    EXPECT_THAT(FilesOfList("", '\n'), IsEmpty());

    std::string lines;
    for (const char *const outcome :
         {PorcelainWord(ItemEnd::NotTried), PorcelainWord(ItemEnd::Published), PorcelainWord(ItemEnd::HandedIn),
          PorcelainWord(ItemEnd::Unknown), PorcelainWord(ItemEnd::Failed), PorcelainLeftOut, PorcelainToSend})
    {
        lines += PorcelainLine(outcome, outcome + "\t.jpg"s, "1", "why\tnot\n", '\n');
    }
    EXPECT_TRUE(lines.starts_with("not-tried\tnot-tried\t.jpg\t1\twhy not \n")) << lines;
    EXPECT_THAT(FilesOfList(lines, '\n'),
                ElementsAre("not-tried\t.jpg", "unknown\t.jpg", "failed\t.jpg", "to-send\t.jpg"));
}
