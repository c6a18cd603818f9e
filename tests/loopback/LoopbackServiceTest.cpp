// The service as a whole: its store, its certificates and its refusals.
#include "LoopbackClient.h"

#include <gmock/gmock.h>

#include <fstream>

using testing::HasSubstr;

namespace
{

namespace fs = std::filesystem;

std::string Content(const fs::path &file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

TEST(LoopbackService, KeepsItsStoreToItselfAndForTheNextRun)
{
    TestFolder folder;
    const fs::path authority = folder.Path() / "store" / "ca" / "ca.pem";
    std::string trusted;
    Json uploads;
    for (const bool isFirst : {true, false})
    {
        const RunningService service({}, folder);
        auto client = service.Client();
        if (isFirst)
        {
            EXPECT_THROW(RunningService({}, folder), std::runtime_error);
            EXPECT_THAT(client.Upload({{"title", "kept"}}).body, HasSubstr("photoid"));
            trusted = Content(authority);
            uploads = client.Uploads();
        }
        EXPECT_EQ(client.Uploads(), uploads);
        EXPECT_EQ(Content(authority), trusted);
        // The client's open connection doesn't keep the service from ending.
    }
    for (const char *key : {"ca.key", "server.key"})
    {
        EXPECT_EQ(fs::status(folder.Path() / "store" / "ca" / key).permissions(),
                  fs::perms::owner_read | fs::perms::owner_write)
            << key;
    }
}
