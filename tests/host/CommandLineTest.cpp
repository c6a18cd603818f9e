#include "host/CommandLine.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
std::variant<CommandLine, CommandLineEnd> Parse(std::vector<const char *> words)
{
    words.insert(words.begin(), "halvora");
    return ParseCommandLine(static_cast<int>(words.size()), words.data());
}

CommandLine Parsed(std::vector<const char *> words)
{
    const auto result = Parse(std::move(words));
    const auto *line = std::get_if<CommandLine>(&result);
    EXPECT_NE(line, nullptr) << (line != nullptr ? "" : std::get<CommandLineEnd>(result).text);
    return line != nullptr ? *line : CommandLine();
}

CommandLineEnd Ended(std::vector<const char *> words)
{
    const auto result = Parse(std::move(words));
    const auto *end = std::get_if<CommandLineEnd>(&result);
    EXPECT_NE(end, nullptr);
    return end != nullptr ? *end : CommandLineEnd();
}
} // namespace

TEST(CommandLineTest, ReadsEveryCommand)
{
    const CommandLine publish = Parsed({"--profile", "/x", "publish", "-r", "--verbose", "status", "a b.jpg"});
    EXPECT_EQ(publish.command, Command::Publish);
    EXPECT_EQ(publish.profile, "/x");
    EXPECT_TRUE(publish.recursive);
    EXPECT_TRUE(publish.verbose);
    EXPECT_THAT(publish.paths, ElementsAre("status", "a b.jpg"));
    EXPECT_THAT(Parsed({"publish", "--", "-x.jpg"}).paths, ElementsAre("-x.jpg"));
    EXPECT_EQ(Parsed({"status", "--profile", "/behind"}).profile, "/behind");
    EXPECT_THAT(Parsed({"account", "--set-token", "t", "s"}).setToken, ElementsAre("t", "s"));
    EXPECT_THAT(Parsed({"publish", "--set", "A=1", "--set", "B=2", "a.jpg"}).assignments,
                ElementsAre("A=1", "B=2"));
    EXPECT_EQ(Parsed({"history", "-n", "3", "a.jpg"}).count, 3u);
}

TEST(CommandLineTest, WrongCallsEndInWords)
{
    EXPECT_TRUE(Ended({}).isError);
    EXPECT_THAT(Ended({"publish"}).text, HasSubstr("--files-from"));
    EXPECT_TRUE(Ended({"publish", "--unknown", "maybe", "a"}).isError);
    EXPECT_TRUE(Ended({"publish", "-q", "-v", "a"}).isError);
    EXPECT_THAT(Ended({"nonsense"}).text, HasSubstr("--help lists"));
    EXPECT_THAT(Ended({"--profile", "/x", "publsih", "a"}).text, HasSubstr("did you mean \"publish\"?"));
    EXPECT_THAT(Ended({"account", "--set-token", "alone"}).text, HasSubstr("its secret"));
    EXPECT_FALSE(Ended({"--help"}).isError);
    EXPECT_THAT(Ended({"--version"}).text, HasSubstr("1.96"));
    EXPECT_EQ(Ended({"version"}).text, Ended({"--version"}).text);
    EXPECT_EQ(Ended({"help", "account"}).text, Ended({"account", "--help"}).text);
}
