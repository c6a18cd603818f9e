#include "LoopbackClient.h"

#include <gmock/gmock.h>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(Gallery, ShowsWhatWasPublishedAndNothingRuns)
{
    RunningService service;
    auto client = service.Client();
    EXPECT_THAT(client.Get("http://127.0.0.1/").body, HasSubstr("Nothing published yet"));
    UploadFile file{"<script>.jpg"};
    client.Upload({{"title", "<script>alert(1)</script>"}, {"tags", "\"b c\" '\"><i>"}, {"is_public", "0"}}, file);
    const std::string quoted = JsonValue(client.Admin("uploads").body, "id");
    const std::string page = "http://127.0.0.1/photo/" + quoted.substr(1, quoted.size() - 2);
    for (const auto &address : {std::string("https://www.flickr.com/"), page})
    {
        const Answer answer = client.Get(address);
        EXPECT_EQ(answer.status, 200);
        EXPECT_THAT(answer.body,
                    AllOf(HasSubstr("&lt;script&gt;alert(1)"), Not(HasSubstr("<script")), Not(HasSubstr("><i>")),
                          HasSubstr("<li>b c</li>"), HasSubstr("Only the owner"), HasSubstr("Safe")));
    }
    const Answer picture = client.Get(page + "/file");
    EXPECT_EQ(picture.contentType, "image/jpeg");
    EXPECT_EQ(picture.body, file.bytes);
    EXPECT_EQ(client.Get("http://127.0.0.1/photo/1").status, 404);
    EXPECT_EQ(client.Get("http://127.0.0.1/photo/..%2F..%2Findex.sqlite/file").status, 404);
}

TEST(Gallery, ComparesUploadsOfOneTitle)
{
    RunningService service;
    auto client = service.Client();
    const std::string page = "http://127.0.0.1/compare";
    EXPECT_THAT(client.Get(page).body, HasSubstr("Nothing to compare yet"));
    // A JPEG comment segment, the smallest metadata there is.
    UploadFile withComment{"a.jpg", "\xFF\xD8\xFF\xFE" + std::string("\x00\x07Notes", 7) + "\xFF\xD9"};
    client.Admin("account", {{"run", "<b>whole"}});
    client.Upload({{"title", "Twice & again"}}, withComment);
    client.Upload({{"title", "Once"}}, withComment);
    client.Admin("account", {{"run", "bare"}});
    client.Upload({{"title", "Twice & again"}}, {"b.jpg", "\xFF\xD8\xFF\xD9"});
    const std::string html = client.Get(page).body;
    EXPECT_THAT(html, AllOf(HasSubstr("Twice &amp; again"), Not(HasSubstr("Once")), Not(HasSubstr("<b>whole")),
                            HasSubstr("<dd dir=\"auto\">Notes</dd>"), HasSubstr("none</span>")));
    EXPECT_LT(html.find("&lt;b&gt;whole"), html.find("bare")) << "the earliest on the left";
}
