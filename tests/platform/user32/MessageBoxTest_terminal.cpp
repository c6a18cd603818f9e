// Message boxes as a user at a terminal sees and answers them.
#include "tests/platform/PseudoTerminal.h"

#include <windows.h>

#include <gmock/gmock.h>

namespace
{
using testing::HasSubstr;

std::string Ask(UINT style)
{
    return std::to_string(MessageBoxW(nullptr, u"Something has happened.", u"Caption", style));
}

TEST(TerminalMessageBox, IsAnswered)
{
    const struct
    {
        UINT style;
        const char *shown;
        const char *typed;
        const char *result;
    } cases[] = {
        {MB_OK, "1 [ OK ]", "\n", "1"},
        {MB_OK | MB_ICONERROR, "Error", "\x1B", "1"},
        {MB_OKCANCEL, "1 [ OK ]   2 [ Cancel ]", "c\n", "2"},
        {MB_OKCANCEL, "Esc: cancel", "\x1B", "2"},
        {MB_OKCANCEL, "Enter: OK", "perhaps\n\n", "1"},
    };
    for (const auto &c : cases)
    {
        TerminalRun run([&] { return Ask(c.style); });
        ASSERT_TRUE(run.Answer(c.typed)) << c.shown;
        EXPECT_THAT(run.Screen(), HasSubstr(c.shown));
        EXPECT_THAT(run.Screen(), HasSubstr("Caption"));
        EXPECT_THAT(run.Screen(), HasSubstr("Something has happened."));
        EXPECT_EQ(run.Result(), c.result) << c.shown << " " << c.typed;
        EXPECT_TRUE(run.EchoesKeys());
    }
}

TEST(TerminalMessageBox, SaysItsTextWhereNobodyCanAnswer)
{
    EXPECT_THAT(RunWithoutTerminal([] { return Ask(MB_OKCANCEL); }),
                testing::EndsWith("Something has happened.\n2"));
    EXPECT_THAT(RunWithoutTerminal([] { return Ask(MB_OK | MB_ICONERROR); }),
                testing::EndsWith("Caption (Error)\nSomething has happened.\n1"));
}

} // namespace
