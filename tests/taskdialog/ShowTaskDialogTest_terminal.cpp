// The dialogs of the authorization on a terminal.
#include "core/ThisModule.h"
#include "resources/resource.h"
#include "taskdialog/TaskDialogRunner.h"
#include "tests/platform/PseudoTerminal.h"

#include <gmock/gmock.h>

namespace
{
using testing::HasSubstr;

std::string Show(UINT resource)
{
    TaskDialogDocument document;
    document.LoadFromResource(resource, TEXT("TDXML"), ThisModule());
    const int outcome = ShowTaskDialog(document, nullptr, true, {IDS_AUTHORIZE_CAPTION, IDS_AUTHORIZE_TEXT, true});
    return std::to_string(outcome) + (document.dialogWindow != nullptr ? " and a window" : "");
}

class TerminalDialogs : public testing::Test
{
};

TEST_F(TerminalDialogs, AskAndAreAnswered)
{
    const struct
    {
        UINT resource;
        const char *shown;
        const char *typed;
        const char *expected;
    } cases[] = {
        {IDX_AUTHORIZE, "+ Security considerations", "\n", "1"},
        {IDX_AUTHORIZE, "Halvora needs your permission to publish images to Flickr.", "2\n", "2"},
        {IDX_AUTHORIZE, "1 [ Authorize ]   2 [ Cancel ]", "\x1B", "2"},
        {IDX_COMPLETION, "Return to this window once you've authorized Halvora on Flickr.", "auth\n", "1"},
        {IDX_COMPLETION, "1 [ Authorization Granted ]   2 [ Cancel ]", "\x03", "2"},
        // No such document: the question is a message box.
        {999, "If you click OK, you will be taken to a web page", "\n", "1"},
        {999, "1 [ OK ]   2 [ Cancel ]", "2\n", "2"},
    };
    for (const auto &c : cases)
    {
        TerminalRun run([&] { return Show(c.resource); });
        ASSERT_TRUE(run.Answer(c.typed)) << c.shown;
        EXPECT_THAT(run.Screen(), HasSubstr(c.shown));
        EXPECT_EQ(run.Result(), c.expected) << c.shown;
    }
}

// Even when expanded, the first dialog is redrawn in place, not below itself.
TEST_F(TerminalDialogs, FitATerminalOf24Lines)
{
    TerminalRun run([] { return Show(IDX_AUTHORIZE); });
    ASSERT_TRUE(run.Answer("+\n"));
    ASSERT_TRUE(run.WaitFor("control panel."));
    ASSERT_TRUE(run.Answer("-\n"));
    ASSERT_TRUE(run.WaitFor("A\x1B[J"));
    ASSERT_TRUE(run.Answer("\n"));
    EXPECT_EQ(run.Result(), "1");
}
} // namespace
