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
        {{"CANCEL\n"}, 2},
        {{" 3 \n"}, 2},
        {{"\x1B"}, 2},
        {{"\x03"}, 2},
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

TEST(TerminalTaskDialog, HasButtonsOfItsOwnAndPlainDefaults)
{
    const struct
    {
        int common;
        int flags;
        const char *shown;
        const char *typed;
        const char *button;
    } cases[] = {
        {0, 0, "1 [ OK ]", "\n", "1"},
        {TDCBF_CLOSE_BUTTON | TDCBF_YES_BUTTON, 0, "1 [ Yes ]   2 [ Close ]", "2\n", "8"},
        {TDCBF_OK_BUTTON | TDCBF_CANCEL_BUTTON | TDCBF_RETRY_BUTTON, 0, "1 [ OK ]   2 [ Retry ]   3 [ Cancel ]",
         "\x1B", "2"},
        {TDCBF_OK_BUTTON, TDF_ALLOW_DIALOG_CANCELLATION, "1 [ OK ]", "\x1B", "2"},
        // It can't be cancelled, but Ctrl+D ends the terminal's input.
        {TDCBF_YES_BUTTON | TDCBF_NO_BUTTON, 0, "1 [ Yes ]   2 [ No ]", "\x04", "2"},
        // Two buttons begin with the letter.
        {TDCBF_CANCEL_BUTTON | TDCBF_CLOSE_BUTTON, 0, "1 [ Cancel ]   2 [ Close ]", "c\ncl\n", "8"},
    };
    for (const auto &c : cases)
    {
        TASKDIALOGCONFIG config{};
        config.cbSize = sizeof(config);
        config.dwCommonButtons = c.common;
        config.dwFlags = c.flags;
        TerminalRun run([&] { return Show(config); });
        ASSERT_TRUE(run.Answer(c.typed)) << c.shown;
        EXPECT_EQ(run.Result(), std::string("result 0 button ") + c.button + " radio 0 checked 0");
        EXPECT_THAT(run.Screen(), HasSubstr(c.shown));
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

TEST(TerminalTaskDialog, WithMoreThanItCanShowIsRefused)
{
    static constexpr TASKDIALOG_BUTTON radioButton = {11, u"Keep the place"};
    const std::function<void(TASKDIALOGCONFIG &)> additions[] = {
        [](TASKDIALOGCONFIG &config) { config.dwFlags |= TDF_USE_COMMAND_LINKS; },
        [](TASKDIALOGCONFIG &config) { config.dwFlags |= TDF_SHOW_PROGRESS_BAR; },
        [](TASKDIALOGCONFIG &config) { config.pszVerificationText = u"Always so"; },
        [](TASKDIALOGCONFIG &config) { config.pszFooter = u"Ask somebody."; },
        [](TASKDIALOGCONFIG &config) {
            config.cRadioButtons = 1;
            config.pRadioButtons = &radioButton;
        },
    };
    for (const auto &add : additions)
    {
        TASKDIALOGCONFIG config = FullRecord();
        add(config);
        EXPECT_EQ(TaskDialogIndirect(&config, nullptr, nullptr, nullptr), E_NOTIMPL);
    }
    for (const int off : {-1, 1})
    {
        TASKDIALOGCONFIG config = FullRecord();
        config.cbSize += off;
        EXPECT_EQ(TaskDialogIndirect(&config, nullptr, nullptr, nullptr), E_INVALIDARG);
    }
    EXPECT_EQ(TaskDialogIndirect(nullptr, nullptr, nullptr, nullptr), E_INVALIDARG);
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
