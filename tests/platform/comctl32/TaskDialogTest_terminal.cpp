// Task dialogs as a user at a terminal sees and answers them.
#include "tests/platform/PseudoTerminal.h"

#include <windows.h>
#include <commctrl.h>

#include <gmock/gmock.h>

#include <thread>

namespace
{
using testing::HasSubstr;
using testing::Not;

constexpr TASKDIALOG_BUTTON Buttons[] = {{100, u"Make it &smaller\nAt most 2048 pixels"}, {101, u"&Leave it out"}};
constexpr TASKDIALOG_BUTTON RadioButtons[] = {{11, u"Keep the place"}, {12, u"Remove the place"}};

TASKDIALOGCONFIG FullRecord()
{
    TASKDIALOGCONFIG config{};
    config.cbSize = sizeof(config);
    config.dwFlags = TDF_USE_COMMAND_LINKS | TDF_ENABLE_HYPERLINKS;
    config.dwCommonButtons = TDCBF_CANCEL_BUTTON;
    config.pszWindowTitle = u"Title here";
    config.pszMainIcon = MAKEINTRESOURCEW(-1);
    config.pszMainInstruction = u"One picture is too large.";
    config.pszContent = u"Gr\u00F6\u00DFe: see <a href=\"https://www.example.org/\">the limits</a>.";
    config.cButtons = 2;
    config.pButtons = Buttons;
    config.nDefaultButton = 101;
    config.cRadioButtons = 2;
    config.pRadioButtons = RadioButtons;
    config.pszVerificationText = u"Always so";
    config.pszExpandedInformation = u"The long story";
    config.pszCollapsedControlText = u"Tell me more";
    config.pszFooterIcon = MAKEINTRESOURCEW(-4);
    config.pszFooter = u"Ask somebody.";
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
    const std::string &screen = run.Screen();
    for (const char *const text :
         {"Title here", "Warning", "One picture is too large.", "Gr\u00F6\u00DFe: see the limits",
          "[L1: https://www.example.org/]", "+ Tell me more", "a (\u2022) Keep the place",
          "b ( ) Remove the place", "1 \u2192 Make it smaller", "At most 2048 pixels", "2 \u2192 Leave it out",
          "3 \u2192 Cancel", "x [ ] Always so", "Security: Ask somebody.", "Enter: Leave it out", "Esc: cancel"})
    {
        EXPECT_THAT(screen, HasSubstr(text));
    }
    EXPECT_THAT(screen, Not(HasSubstr("The long story")));
    ASSERT_TRUE(run.WaitFor("The long story"));
    ASSERT_TRUE(run.Answer("\n"));
    EXPECT_EQ(run.Result(), "result 0 button 101 radio 11 checked 0");
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
        const char *expected;
    } cases[] = {
        {{"1\n"}, "button 100 radio 11 checked 0"},
        {{"\n"}, "button 101 radio 11 checked 0"},
        {{"leave\n"}, "button 101 radio 11 checked 0"},
        {{"CANCEL\n"}, "button 2 radio 11 checked 0"},
        {{" 3 \n"}, "button 2 radio 11 checked 0"},
        {{"\x1B"}, "button 2 radio 11 checked 0"},
        {{"\x03"}, "button 2 radio 11 checked 0"},
        {{"\x04"}, "button 2 radio 11 checked 0"},
        {{"b\n", "x\n", "1\n"}, "button 100 radio 12 checked 1"},
        {{"x\n", "x\n", "Remove the place\n", "1\n"}, "button 100 radio 12 checked 0"},
        {{"4\n", "0\n", "nonsense\n", "12\x7F\n"}, "button 100 radio 11 checked 0"},
        {{"\x1B[A\x1B[B"
          "1\n"},
         "button 100 radio 11 checked 0"},
        {{"3\x15"
          "1\n"},
         "button 100 radio 11 checked 0"},
    };
    for (const auto &c : cases)
    {
        TerminalRun run([] { return Show(FullRecord()); });
        for (const std::string &typed : c.typed)
        {
            ASSERT_TRUE(run.Answer(typed)) << testing::PrintToString(c.typed);
        }
        EXPECT_EQ(run.Result(), std::string("result 0 ") + c.expected) << testing::PrintToString(c.typed);
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
        const char *expected;
    } cases[] = {
        {0, 0, "1 [ OK ]", "\n", "button 1"},
        {TDCBF_CLOSE_BUTTON | TDCBF_YES_BUTTON, 0, "1 [ Yes ]   2 [ Close ]", "2\n", "button 8"},
        {TDCBF_OK_BUTTON | TDCBF_CANCEL_BUTTON | TDCBF_RETRY_BUTTON, 0, "1 [ OK ]   2 [ Retry ]   3 [ Cancel ]",
         "\x1B", "button 2"},
        {TDCBF_OK_BUTTON, TDF_ALLOW_DIALOG_CANCELLATION, "1 [ OK ]", "\x1B", "button 2"},
        // It can't be cancelled, but Ctrl+D ends the terminal's input.
        {TDCBF_YES_BUTTON | TDCBF_NO_BUTTON, 0, "1 [ Yes ]   2 [ No ]", "\x04", "button 2"},
    };
    for (const auto &c : cases)
    {
        TASKDIALOGCONFIG config{};
        config.cbSize = sizeof(config);
        config.dwCommonButtons = c.common;
        config.dwFlags = c.flags;
        TerminalRun run([&] { return Show(config); });
        ASSERT_TRUE(run.Answer(c.typed)) << c.shown;
        EXPECT_THAT(run.Screen(), HasSubstr(c.shown));
        EXPECT_EQ(run.Result(), std::string("result 0 ") + c.expected + " radio 0 checked 0");
    }
}

// The notifications that the callback received, and its reaction.
std::string told;

HRESULT CALLBACK Recorder(HWND window, UINT notification, WPARAM wParam, LPARAM lParam, LONG_PTR data)
{
    told += std::to_string(notification) + (wParam ? ":" + std::to_string(wParam) : "") + " ";
    if (notification == TDN_HYPERLINK_CLICKED)
    {
        const std::u16string address = reinterpret_cast<const char16_t *>(lParam);
        told += std::string(address.begin(), address.end()) + " ";
    }
    EXPECT_TRUE(IsWindow(window));
    return notification == TDN_BUTTON_CLICKED && static_cast<LONG_PTR>(wParam) == data ? S_FALSE : S_OK;
}

TEST(TerminalTaskDialog, TellsItsCallbackEverything)
{
    TASKDIALOGCONFIG config = FullRecord();
    config.pfCallback = Recorder;
    config.lpCallbackData = 100;
    TerminalRun run([&] { return Show(config) + " told " + told; });
    for (const char *const typed : {"b\n", "x\n", "+\n", "L1\n", "1\n", "2\n"})
    {
        ASSERT_TRUE(run.Answer(typed));
    }
    EXPECT_EQ(run.Result(),
              "result 0 button 101 radio 12 checked 1 told 7 0 6:12 8:1 10:1 3 https://www.example.org/ "
              "2:100 2:101 5 ");
}

HRESULT CALLBACK Changer(HWND window, UINT notification, WPARAM, LPARAM, LONG_PTR)
{
    if (notification == TDN_DIALOG_CONSTRUCTED)
    {
        SendMessageW(window, TDM_SET_BUTTON_ELEVATION_REQUIRED_STATE, 100, TRUE);
        SendMessageW(window, TDM_ENABLE_BUTTON, 101, FALSE);
        SendMessageW(window, TDM_ENABLE_RADIO_BUTTON, 12, FALSE);
        SendMessageW(window, TDM_SET_ELEMENT_TEXT, TDE_CONTENT, reinterpret_cast<LPARAM>(u"Another text"));
        SendMessageW(window, TDM_UPDATE_ICON, TDIE_ICON_MAIN, reinterpret_cast<LPARAM>(MAKEINTRESOURCEW(-2)));
        EXPECT_EQ(SendMessageW(window, TDM_SET_PROGRESS_BAR_RANGE, 0, MAKELPARAM(0, 200)), MAKELPARAM(0, 100));
        SendMessageW(window, TDM_SET_PROGRESS_BAR_POS, 50, 0);
        EXPECT_EQ(SendMessageW(window, TDM_SET_PROGRESS_BAR_POS, 90, 0), 50);
        SendMessageW(window, TDM_SET_PROGRESS_BAR_STATE, PBST_PAUSED, 0);
    }
    return S_OK;
}

TEST(TerminalTaskDialog, ChangesAsItsCallbackTellsIt)
{
    TASKDIALOGCONFIG config = FullRecord();
    config.dwFlags |= TDF_SHOW_PROGRESS_BAR;
    config.pfCallback = Changer;
    TerminalRun run([&] { return Show(config); });
    ASSERT_TRUE(run.Answer("2\n"));
    for (const char *const text :
         {"Error", "Another text", "Make it smaller (as administrator)", "Leave it out (not available)",
          "Remove the place (not available)", "] 45 %  paused"})
    {
        EXPECT_THAT(run.Screen(), HasSubstr(text));
    }
    ASSERT_TRUE(run.WaitFor("That is not available now."));
    ASSERT_TRUE(run.Answer("b\n"));
    ASSERT_TRUE(run.Answer("1\n"));
    EXPECT_EQ(run.Result(), "result 0 button 100 radio 11 checked 0");
}

HRESULT CALLBACK Impatient(HWND window, UINT notification, WPARAM wParam, LPARAM, LONG_PTR data)
{
    if (notification == TDN_TIMER && wParam >= 400)
    {
        SendMessageW(window, TDM_CLICK_BUTTON, 101, 0);
    }
    if (notification == TDN_CREATED && data != 0)
    {
        // Detached, since it runs until the process ends.
        std::thread([window] {
            SendMessageW(window, TDM_CLICK_RADIO_BUTTON, 12, 0);
            SendMessageW(window, TDM_CLICK_VERIFICATION, TRUE, 0);
            SendMessageW(window, WM_CLOSE, 0, 0);
        }).detach();
    }
    return S_OK;
}

TEST(TerminalTaskDialog, IsAnsweredByItsTimerOrAnotherThread)
{
    TASKDIALOGCONFIG config = FullRecord();
    config.pfCallback = Impatient;
    config.dwFlags |= TDF_CALLBACK_TIMER;
    EXPECT_EQ(TerminalRun([&] { return Show(config); }).Result(), "result 0 button 101 radio 11 checked 0");
    config.lpCallbackData = 1;
    EXPECT_EQ(TerminalRun([&] { return Show(config); }).Result(), "result 0 button 2 radio 12 checked 1");
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
    // 30 characters of two columns; then a word without a break; then combining marks.
    const std::u16string text =
        std::u16string(30, u'\u65E5') + u"\n" + std::u16string(70, u'w') + u"\n" + u"e\u0301e\u0301 second";
    config.pszContent = text.c_str();
    TerminalRun run([&] { return Show(config); }, 50, 24);
    ASSERT_TRUE(run.Answer("\n"));
    // 43 columns are left for text between the frame's sides.
    std::string wide;
    for (int i = 0; i < 21; ++i)
    {
        wide += "\u65E5";
    }
    const std::string side = "\u2502";
    EXPECT_THAT(run.Screen(), HasSubstr(side + "  " + wide + "   " + side));
    EXPECT_THAT(run.Screen(), HasSubstr(side + "  " + std::string(43, 'w') + "  " + side));
    EXPECT_THAT(run.Screen(), HasSubstr(side + "  e\u0301e\u0301 second" + std::string(34, ' ') + "  " + side));
}

TEST(TerminalTaskDialog, IsCancelledWhereNobodyCanAnswer)
{
    TASKDIALOGCONFIG config = FullRecord();
    config.pfCallback = Recorder;
    const std::string all = RunWithoutTerminal([&] { return Show(config) + " told " + told; });
    EXPECT_THAT(all, HasSubstr("One picture is too large."));
    EXPECT_THAT(all, HasSubstr("result 0 button 2 radio 11 checked 0 told 7 0 2:2 5 "));
}
} // namespace
