// flickr-loopback as a user or a script runs it.
#include "LoopbackClient.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>

using testing::HasSubstr;

namespace
{

namespace fs = std::filesystem;

pid_t Start(const std::vector<std::string> &arguments)
{
    const pid_t child = fork();
    if (child == 0)
    {
        std::vector<char *> pointers{const_cast<char *>(FLICKR_LOOPBACK)};
        for (const auto &argument : arguments)
        {
            pointers.push_back(const_cast<char *>(argument.c_str()));
        }
        pointers.push_back(nullptr);
        // Keep its output out of the tests' output.
        if (freopen("/dev/null", "w", stdout) && freopen("/dev/null", "w", stderr))
        {
            execv(FLICKR_LOOPBACK, pointers.data());
        }
        _exit(127);
    }
    return child;
}

int ExitOf(pid_t child)
{
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The value that the variable has in a shell that has read the ready file.
std::string FromReadyFile(const fs::path &file, const std::string &variable)
{
    for (int i = 0; i < 600 && !fs::exists(file); ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    FILE *shell = popen((". '" + file.string() + "'; printf %s \"$" + variable + "\"").c_str(), "r");
    std::string value(4096, '\0');
    value.resize(fread(value.data(), 1, value.size(), shell));
    pclose(shell);
    return value;
}

} // namespace

TEST(Program, StartsServesStopsAndKeepsItsStore)
{
    TestFolder folder;
    const fs::path ready = folder.Path() / "ready file";
    const std::vector<std::string> arguments = {"--store", (folder.Path() / "store").string(), "--ready-file",
                                                ready.string()};
    std::string authority;
    std::string id;
    for (const bool isFirst : {true, false})
    {
        const pid_t child = Start(arguments);
        const int port = std::atoi(FromReadyFile(ready, "HALVORA_LOOPBACK_PORT").c_str());
        ASSERT_GT(port, 0);
        const fs::path caFile = FromReadyFile(ready, "HALVORA_CA_FILE");
        EXPECT_THAT(FromReadyFile(ready, "HALVORA_CONNECT_TO"),
                    HasSubstr("api.flickr.com:443:127.0.0.1:" + std::to_string(port) + ";"));
        LoopbackClient client(port, caFile);
        if (isFirst)
        {
            EXPECT_EQ(ExitOf(Start({"--store", (folder.Path() / "store").string()})), 1);
            EXPECT_THAT(client.Upload({{"title", "kept"}}).body, HasSubstr("photoid"));
        }
        const std::string uploads = client.Admin("uploads").body;
        EXPECT_EQ(JsonValue(uploads, "title"), "\"kept\"");
        std::ostringstream bytes;
        bytes << std::ifstream(caFile).rdbuf();
        EXPECT_TRUE(isFirst || (bytes.str() == authority && JsonValue(uploads, "id") == id));
        authority = bytes.str();
        id = JsonValue(uploads, "id");
        // An open connection doesn't keep the program from ending.
        kill(child, isFirst ? SIGTERM : SIGINT);
        EXPECT_EQ(ExitOf(child), 0);
        fs::remove(ready);
    }
    for (const char *key : {"ca.key", "server.key"})
    {
        struct stat status = {};
        ASSERT_EQ(stat((folder.Path() / "store" / "ca" / key).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u) << key;
    }
}

TEST(Program, RefusesWhatItCannotDo)
{
    TestFolder folder;
    const std::string store = (folder.Path() / "store").string();
    EXPECT_NE(ExitOf(Start({"--prot", "1"})), 0);
    EXPECT_EQ(ExitOf(Start({"--store", store, "--fault", "kind=smoke"})), 1);
    EXPECT_EQ(ExitOf(Start({"--store", store, "--account", "level=gold"})), 1);
    EXPECT_EQ(ExitOf(Start({"--store", "/proc/nowhere"})), 1);
}
