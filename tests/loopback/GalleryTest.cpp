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

TEST(Gallery, ComparesTheNewestUploadOfEachRunWithTheFileAsOnDisk)
{
    RunningService service;
    auto client = service.Client();
    const std::string page = "http://127.0.0.1/compare";
    EXPECT_THAT(client.Get(page).body, HasSubstr("Nothing to compare yet"));
    // A JPEG comment segment, the smallest metadata there is.
    const UploadFile withComment{"a.jpg", "\xFF\xD8\xFF\xFE" + std::string("\x00\x07Notes", 7) + "\xFF\xD9"};
    const UploadFile bare{"b.jpg", "\xFF\xD8\xFF\xD9"};
    const struct
    {
        const char *run;
        const char *title;
        const UploadFile &file;
    } uploads[] = {
        {"As on disk", "Twice & again", withComment},
        {"As on disk", "Bare", bare},
        {"<b>whole", "Bare", withComment},
        {"As on disk", "Once", withComment},
        {"whole", "Twice & again", withComment},
        {"bare", "Twice & again", withComment},
        {"bare", "Twice & again", bare},
    };
    for (const auto &[run, title, file] : uploads)
    {
        client.Admin("account", {{"run", run}});
        client.Upload({{"title", title}}, file);
    }
    const std::string html = client.Get(page).body;
    const auto bareSection = html.find("id=\"title-2\"");
    const auto at = [&](const char *text, std::size_t from = 0) { return html.find(text, from); };
    // The title that was uploaded last is above; the reference on the left, then the newest.
    EXPECT_LT(at(">Twice &amp; again</h2>"), bareSection);
    EXPECT_LT(at("</a>As on disk<"), at("</a>bare<"));
    EXPECT_LT(at("</a>bare<"), at("</a>whole<"));
    EXPECT_EQ(at("</a>bare<", at("</a>bare<") + 1), std::string::npos) << "each run once";
    EXPECT_LT(at("<td>1</td><td><details><summary><span class=\"lost\">0 of 1 kept</span></summary>"
                 "<p><b>Not sent:</b> Comment</p></details></td><td>all 1</td>"),
              bareSection);
    EXPECT_NE(at("<td><span class=\"soft\">none in the file</span></td><td><details><summary>1 added</summary>",
                 bareSection),
              std::string::npos);
    EXPECT_THAT(html, AllOf(HasSubstr("A demonstration"), Not(HasSubstr("Once")), Not(HasSubstr("<b>whole"))));
}
