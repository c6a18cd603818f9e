#include "loopback/PhotoIndex.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

TEST(UploadParameters, AreRefusedAsTheServiceRefusesThem)
{
    const std::pair<loopback::FormFields, const char *> cases[] = {
        {{{"is_public", "2"}}, "is_public is not a number from 0 to 1"},
        {{{"safety_level", "0"}}, "safety_level"},
        {{{"content_type", ""}}, "content_type"},
        {{{"title", "Gr\xFC\xDF"}}, "not UTF-8"},
        {{{"title", "a"}, {"title", "b"}}, "occurs twice"},
    };
    for (const auto &[fields, fault] : cases)
    {
        loopback::PhotoRecord record;
        EXPECT_THAT(loopback::ReadUploadParameters(fields, record), HasSubstr(fault));
    }
}

TEST(SplitTags, ReadsQuotedAndBareTags)
{
    EXPECT_THAT(loopback::SplitTags("\"a\" \"b c\" d  e\" \" \" \"\" \"open end"),
                ElementsAre("a", "b c", "d", "e\"", "open end"));
    EXPECT_THAT(loopback::SplitTags("  "), ElementsAre());
}
