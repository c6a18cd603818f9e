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
    const std::string page = "http://127.0.0.1/photo/" + client.Uploads()[0].at("id").get<std::string>();
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
