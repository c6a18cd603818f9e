// Task dialogs as a user at a terminal sees and answers them.
#include "tests/platform/PseudoTerminal.h"

#include <windows.h>
#include <commctrl.h>

#include <gmock/gmock.h>

namespace
{
using testing::HasSubstr;
using testing::Not;

constexpr TASKDIALOG_BUTTON Buttons[] = {{100, u"Make it smaller"}, {101, u"Leave it out"}};

TASKDIALOGCONFIG FullRecord()
{
    TASKDIALOGCONFIG config{};
    config.cbSize = sizeof(config);
    config.dwFlags = TDF_POSITION_RELATIVE_TO_WINDOW;
    config.dwCommonButtons = TDCBF_CANCEL_BUTTON;
    config.pszWindowTitle = u"Title here";
    config.pszMainIcon = MAKEINTRESOURCEW(-1);
    config.pszMainInstruction = u"One picture is too large.";
    config.pszContent = u"Gr\u00F6\u00DFe";
    config.cButtons = 2;
    config.pButtons = Buttons;
    config.nDefaultButton = 101;
    config.pszExpandedInformation = u"The long story";
    config.pszCollapsedControlText = u"Tell me more";
    return config;
}

std::string Show(const TASKDIALOGCONFIG &config)
{
    int button = -7, radioButton = -7;
    BOOL checked = -7;
    const HRESULT result = TaskDialogIndirect(&config, &button, &radioButton, &checked);
    return "result " + std::to_string(result) + " button " + std::to_string(button) + " radio " +
           std::to_string(radioButton) + " checked " + std::to_string(checked);
}

TEST(TerminalTaskDialog, ShowsAllThatTheRecordSays)
{
    TerminalRun run([] { return Show(FullRecord()); });
    ASSERT_TRUE(run.Answer("+\n"));
    for (const char *const text :
         {"─ Title here ─", "─ Warning ─╮\r\n", "│  One picture is too large. ", "│  Gr\u00F6\u00DFe ",
          "│  + Tell me more ", "│  1 [ Make it smaller ]   2 [ Leave it out ]   3 [ Cancel ] ",
          "Type a number, + to show more. Enter: Leave it out. Esc: cancel"})
    {
        EXPECT_THAT(run.Screen(), HasSubstr(text));
    }
    EXPECT_THAT(run.Screen(), Not(HasSubstr("The long story")));
    ASSERT_TRUE(run.WaitFor("A\x1B[J")) << "drawn over the first";
    ASSERT_TRUE(run.WaitFor("- Tell me more"));
    ASSERT_TRUE(run.WaitFor("The long story"));
    ASSERT_TRUE(run.WaitFor(", - to show less"));
    ASSERT_TRUE(run.Answer("\n"));
    EXPECT_EQ(run.Result(), "result 0 button 101 radio 0 checked 0");
    EXPECT_TRUE(run.EchoesKeys());
}

TEST(TerminalTaskDialog, ASignalThatEndsTheProcessLeavesTheTerminalAsItWas)
{
    for (const int number : {SIGTERM, SIGHUP, SIGINT})
    {
        TerminalRun run([] { return Show(FullRecord()); });
        ASSERT_TRUE(run.WaitFor("   > "));
        EXPECT_FALSE(run.EchoesKeys());
        EXPECT_EQ(run.EndBySignal(number), number);
        EXPECT_TRUE(run.EchoesKeys());
    }
}

TEST(TerminalTaskDialog, TakesAnswersOfManyKinds)
{
    const struct
    {
        std::vector<std::string> typed; // one entry per prompt
        int button;
    } cases[] = {
        {{"1\n"}, 100},
        {{"\n"}, 101},
        {{"leave\n"}, 101},
        {{" CANCEL \n"}, 2},
        {{"\x1B"}, 2},
        {{"\x04"}, 2},
        {{"+\n", "-\n", "1\n"}, 100},
        {{"4\n", "0\n", "nonsense\n", "12\x7F\n"}, 100},
        {{"\x1B[A\x1B[B"
          "1\n"},
         100},
        {{"3\x15"
          "1\n"},
         100},
    };
    for (const auto &c : cases)
    {
        TerminalRun run([] { return Show(FullRecord()); });
        for (const std::string &typed : c.typed)
        {
            ASSERT_TRUE(run.Answer(typed)) << testing::PrintToString(c.typed);
        }
        EXPECT_EQ(run.Result(), "result 0 button " + std::to_string(c.button) + " radio 0 checked 0")
            << testing::PrintToString(c.typed);
        EXPECT_TRUE(run.EchoesKeys());
    }
}

// The notifications that the callback received.
std::string told;

HRESULT CALLBACK Recorder(HWND window, UINT notification, WPARAM, LPARAM, LONG_PTR data)
{
    told += std::to_string(notification) + " ";
    EXPECT_EQ(data, 100);
    EXPECT_TRUE(IsWindow(window));
    return S_OK;
}

TEST(TerminalTaskDialog, IsCancelledWhereNobodyCanAnswer)
{
    TASKDIALOGCONFIG config = FullRecord();
    config.pfCallback = Recorder;
    config.lpCallbackData = 100;
    const std::string all = RunWithoutTerminal([&] { return Show(config) + " told " + told; });
    EXPECT_THAT(all,
                testing::StartsWith("Title here (Warning)\nOne picture is too large.\nGr\u00F6\u00DFe\nThe long"));
    EXPECT_THAT(all, HasSubstr("result 0 button 2 radio 0 checked 0 told 7 0 5 "));
}

TEST(TerminalTaskDialog, KeepsItsTextsFromTheTerminal)
{
    TASKDIALOGCONFIG config{};
    config.cbSize = sizeof(config);
    config.pszWindowTitle = u"Tit\u001B]0;le\u0007";
    config.pszContent = u"red \u001B[31mtext \u202Ereversed\ttab \u009B1A end";
    TerminalRun run([&] { return Show(config); }, 80, 24, "dumb");
    ASSERT_TRUE(run.Answer("\n"));
    EXPECT_THAT(run.Screen(), Not(HasSubstr("\x1B")));
    EXPECT_THAT(run.Screen(), Not(HasSubstr("\u202E")));
    EXPECT_THAT(run.Screen(), Not(HasSubstr("\u009B")));
    EXPECT_THAT(run.Screen(), HasSubstr("reversed tab"));
}

TEST(TerminalTaskDialog, WrapsWideTextsToTheTerminal)
{
    TASKDIALOGCONFIG config{};
    config.cbSize = sizeof(config);
    config.pszWindowTitle = u"A title that leaves too little room";
    config.pszMainIcon = MAKEINTRESOURCEW(-3);
    // 30 characters of two columns; then a word without a break; then combining marks.
    const std::u16string text =
        std::u16string(30, u'\u65E5') + u"\n" + std::u16string(70, u'w') + u"\n" + u"e\u0301e\u0301 second";
    config.pszContent = text.c_str();
    static constexpr TASKDIALOG_BUTTON longButton = {100, u"Fits into no row beside the other one"};
    config.cButtons = 1;
    config.pButtons = &longButton;
    config.dwCommonButtons = TDCBF_CANCEL_BUTTON;
    TerminalRun run([&] { return Show(config); }, 50, 24);
    ASSERT_TRUE(run.Answer("\n"));
    // 43 columns are left for text between the frame's sides.
    std::string wide;
    for (int i = 0; i < 21; ++i)
    {
        wide += "\u65E5";
    }
    const std::string side = "\u2502";
    const std::string lines[] = {"  Information" + std::string(34, ' '),
                                 "  " + wide + "   ",
                                 "  " + std::string(43, 'w') + "  ",
                                 "  e\u0301e\u0301 second" + std::string(34, ' ') + "  ",
                                 "  1 [ Fits into no row beside the other one ]  ",
                                 "  2 [ Cancel ]" + std::string(33, ' ')};
    for (const std::string &line : lines)
    {
        EXPECT_THAT(run.Screen(), HasSubstr(side + line + side));
    }
}
} // namespace
