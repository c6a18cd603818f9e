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

// In place of a document that isn't there the question is a message box.
TEST(TerminalDialogs, ThatDoNotLoadBecomeMessageBoxes)
{
    for (const auto &[typed, expected] : {std::pair("\n", "1"), {"2\n", "2"}})
    {
        TerminalRun run([] { return Show(999); });
        ASSERT_TRUE(run.Answer(typed));
        EXPECT_THAT(run.Screen(), HasSubstr("If you click OK, you will be taken to a web page"));
        EXPECT_EQ(run.Result(), expected);
    }
}

// Even when expanded, the first dialog is redrawn in place, not below itself.
TEST(TerminalDialogs, FitATerminalOf24Lines)
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
