#include "core/ThisModule.h"
#include "resources/resource.h"
#include "taskdialog/TaskDialogDocument.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class TaskDialogDocuments : public testing::Test
{
protected:
    bool Load(const std::string &text)
    {
        const bool result = m_document.LoadDocument({reinterpret_cast<const BYTE *>(text.data()), text.size()});
        EXPECT_EQ(result, m_document.loaded);
        return result;
    }

    // The children of a root element of version 1.
    bool LoadParts(const std::string &parts)
    {
        return Load("<task_dialog version=\"1\">" + parts + "</task_dialog>");
    }

    TaskDialogDocument m_document;
};

WideText Text(const WCHAR *text)
{
    return text != nullptr ? text : TEXT("(null)");
}

// "7:text|8:text"
WideText Buttons(const TASKDIALOG_BUTTON *buttons, UINT count)
{
    WideText all;
    for (UINT i = 0; i < count; ++i)
    {
        const std::string id = std::to_string(buttons[i].nButtonID);
        all +=
            (i > 0 ? TEXT("|") : TEXT("")) + WideText(id.begin(), id.end()) + TEXT(":") + buttons[i].pszButtonText;
    }
    return all;
}

TEST_F(TaskDialogDocuments, AreRefusedForTheirFrameAlone)
{
    const struct
    {
        const char *text;
        bool good;
    } cases[] = {
        {"<task_dialog version=\"1\"/>", true},
        {"<?xml version=\"1.0\"?>\r\n<task_dialog version=\"1\">\r\n</task_dialog>", true},
        {"<task_dialog version=\"2\"/>", false},
        {"<task_dialog version=\"0\"/>", false},
        {"<task_dialog version=\"one\"/>", false},
        {"<task_dialog version=\"\"/>", false},
        {"<task_dialog/>", false},
        {"<Task_Dialog version=\"1\"/>", false},
        {"<dialogs><task_dialog version=\"1\"/></dialogs>", false},
        {"<task_dialog version=\"1\">", false},
        {"no XML", false},
        {"", false},
        // The element's content doesn't matter.
        {"<task_dialog version=\"1\"><strange/><title>a</title><title>b</title><flags>no such word</flags>"
         "</task_dialog>",
         true},
    };
    for (const auto &c : cases)
    {
        EXPECT_EQ(Load(c.text), c.good) << c.text;
    }
}

TEST_F(TaskDialogDocuments, GiveTextsAndIconsWhereverTheyStand)
{
    ASSERT_TRUE(LoadParts("<checkbox>Check</checkbox><expando><text state='expanded'>Open</text>"
                          "<text state='collapsed'>Closed</text><text state='other'>No</text></expando>"
                          "<expanded_text>One&#xA;Two</expanded_text><footer icon='error'>Foot</footer>"
                          "<content>Gr&#xF6;&#xDF;e &lt;a href=\"x\"&gt;</content>"
                          "<main_text icon='shield'>Main</main_text><title/>"));
    const TASKDIALOGCONFIG &config = m_document.config;
    EXPECT_EQ(Text(config.pszWindowTitle), TEXT(""));
    EXPECT_EQ(Text(config.pszMainInstruction), TEXT("Main"));
    EXPECT_EQ(Text(config.pszContent), TEXT("Gr\u00F6\u00DFe <a href=\"x\">"));
    EXPECT_EQ(Text(config.pszFooter), TEXT("Foot"));
    EXPECT_EQ(Text(config.pszExpandedInformation), TEXT("One\nTwo"));
    EXPECT_EQ(Text(config.pszCollapsedControlText), TEXT("Closed"));
    EXPECT_EQ(Text(config.pszExpandedControlText), TEXT("Open"));
    EXPECT_EQ(Text(config.pszVerificationText), TEXT("Check"));
    EXPECT_EQ(reinterpret_cast<ULONG_PTR>(config.pszMainIcon), 65532u);
    EXPECT_EQ(reinterpret_cast<ULONG_PTR>(config.pszFooterIcon), 65534u);
    EXPECT_EQ(config.dwFlags & TDF_USE_HICON_MAIN, 0);
}

TEST_F(TaskDialogDocuments, KnowFourIcons)
{
    static constexpr std::pair<const char *, ULONG_PTR> cases[] = {
        {"information", 65533}, {"warning", 65535}, {"error", 65534}, {"shield", 65532},
        {"Warning", 0},         {"question", 0},    {"", 0}};
    for (const auto &[word, icon] : cases)
    {
        const auto quoted = std::string(" icon='") + word + "'/>";
        ASSERT_TRUE(LoadParts("<main_text" + quoted));
        EXPECT_EQ(reinterpret_cast<ULONG_PTR>(m_document.config.pszMainIcon), icon) << word;
        EXPECT_EQ(+m_document.config.pszFooterIcon, nullptr);
        ASSERT_TRUE(LoadParts("<footer" + quoted));
        EXPECT_EQ(reinterpret_cast<ULONG_PTR>(m_document.config.pszFooterIcon), icon) << word;
        EXPECT_EQ(+m_document.config.pszMainIcon, nullptr);
    }
}

TEST_F(TaskDialogDocuments, HaveCommonButtonsByWordAndOthersByNumber)
{
    const std::string text = "'><text line='1'>No</text></button>";
    const struct
    {
        std::string buttons;
        int common = 0;
        int byDefault = 0;
        const WCHAR *custom = TEXT("");
        std::vector<INT32> shields = {};
    } cases[] = {
        {"/>"},
        {"><button id='ok'/></buttons>", 1},
        {"><button id='yes'/><button id='no'/></buttons>", 6},
        {"><button id='cancel'/></buttons>", 8},
        {"><button id='retry'/><button id='close'/></buttons>", 48},
        {"><button id='Cancel'/><button id=' ok'/><button id=''/><button/></buttons>"},
        {"><button id='ok' icon='shield" + text + "</buttons>", 1},
        {"><button id='0" + text + "<button id='7'/></buttons>"},
        {"><button id='7x" + text + "<button id='99999999999" + text + "</buttons>"},
        {"><button id='7'><text>No</text></button><button id='8'><text line='2'>No</text></button></buttons>"},
        {"><button id='20'><text line='2'>Note</text><text line='1'>Two</text></button>"
         "<button id='cancel'/><button id='10'><text line='1'/></button></buttons>",
         8, 0, TEXT("20:Two\nNote|10:")},
        {"><button id='5' icon='shield" + text + "<button id='6' icon='Shield" + text +
             "<button id='4' icon='shield" + text + "</buttons>",
         0,
         0,
         TEXT("5:No|6:No|4:No"),
         {5, 4}},
        {" default='cancel'/>", 0, 2},
        {" default='ok'/>", 0, 1},
        {" default='yes'/>", 0, 6},
        {" default='no'/>", 0, 7},
        {" default='retry'/>", 0, 4},
        {" default='close'/>", 0, 8},
        {" default='120'/>", 0, 120},
        {" default='12 apples'/>"},
        {" default='Close'/>"},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(c.buttons);
        ASSERT_TRUE(LoadParts("<buttons" + c.buttons));
        const TASKDIALOGCONFIG &config = m_document.config;
        EXPECT_EQ(config.dwCommonButtons, c.common);
        EXPECT_EQ(config.nDefaultButton, c.byDefault);
        EXPECT_EQ(Buttons(config.pButtons, config.cButtons), c.custom);
        EXPECT_EQ(config.pButtons == nullptr, config.cButtons == 0);
        EXPECT_EQ(m_document.shieldButtonIds, c.shields);
    }
}

TEST_F(TaskDialogDocuments, HaveRadioButtonsByNumberAlone)
{
    const struct
    {
        const char *buttons;
        int byDefault = 0;
        int flags = 0;
        const WCHAR *radioButtons = TEXT("");
    } cases[] = {
        {"<radio_buttons/>"},
        {"<radio_buttons default='none'/>", 0, 0x4000},
        {"<radio_buttons default='None'/>"},
        {"<radio_buttons default='3'><button id='2'><text>B</text></button><button id='3'><text line='9'>C</text>"
         "<text>D</text></button></radio_buttons>",
         3, 0, TEXT("2:B|3:C")},
        {"<radio_buttons><button id='ok'><text>A</text></button><button id='0'><text>B</text></button>"
         "<button id='4'/><button><text>C</text></button><button id='-5'><text>D</text></button></radio_buttons>",
         0, 0, TEXT("-5:D")},
        // The flags are read after the radio buttons and keep the bit.
        {"<flags>position_relative</flags><radio_buttons default='none'/>", 0, 0x5000},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(c.buttons);
        ASSERT_TRUE(LoadParts(c.buttons));
        const TASKDIALOGCONFIG &config = m_document.config;
        EXPECT_EQ(config.nDefaultRadioButton, c.byDefault);
        EXPECT_EQ(config.dwFlags, c.flags);
        EXPECT_EQ(Buttons(config.pRadioButtons, config.cRadioButtons), c.radioButtons);
        EXPECT_EQ(config.pRadioButtons == nullptr, config.cRadioButtons == 0);
    }
}

TEST_F(TaskDialogDocuments, HaveFlagsInWordsAndNumbers)
{
    const struct
    {
        const char *flags;
        int expected = 0;
        UINT width = 0;
        INT64 marquee = 0;
    } cases[] = {
        {"/>"},
        {">allow_hyperlinks use_command_links</flags>", 0x11},
        {">allow_cancellation use_command_links_no_icon</flags>", 0x28},
        {">expand_footer checked_by_default show_marquee</flags>", 0x540},
        {">expanded_by_default show_progress_bar position_relative</flags>", 0x1280},
        {">show_marquee  can_be_minimized</flags>", 0x8400},
        {">show_marquee\ncan_be_minimized</flags>"},
        {">show_marquee\tcan_be_minimized expand_footer</flags>", 0x40},
        {">Show_Marquee minimized</flags>"},
        {" extra='2048'/>", 0x800},
        {" extra='2048'>show_marquee</flags>", 0xC00},
        {" extra='none' dialog_width='abc' marquee_time='40'/>", 0, 0, 40},
        {" extra='-1' dialog_width='215' marquee_time='-5'/>", -1, 215, -5},
        {" dialog_width='4294967295' marquee_time='9007199254740993'/>", 0, 4294967295, 9007199254740993},
        {" dialog_width='-1' marquee_time='soon'/>"},
        {" dialog_width=''/>"},
    };
    for (const auto &c : cases)
    {
        ASSERT_TRUE(LoadParts(std::string("<flags") + c.flags)) << c.flags;
        EXPECT_EQ(m_document.config.dwFlags, c.expected) << c.flags;
        EXPECT_EQ(m_document.config.cxWidth, c.width) << c.flags;
        EXPECT_EQ(m_document.marqueeTime, c.marquee) << c.flags;
    }
}

TEST_F(TaskDialogDocuments, ThatSayNothingShowNothingWhateverWasLoadedBefore)
{
    m_document.selectedButton = 5;
    m_document.dialogWindow = reinterpret_cast<HWND>(7);
    const TASKDIALOGCONFIG &config = m_document.config;
    for (const char *const next : {"<task_dialog version=\"1\"/>", "<broken>"})
    {
        ASSERT_TRUE(LoadParts(
            "<title>A</title><main_text icon='error'>B</main_text><content>C</content><checkbox>D</checkbox>"
            "<expanded_text>E</expanded_text><expando><text state='expanded'>F</text><text "
            "state='collapsed'>G</text>"
            "</expando><footer icon='error'>H</footer><buttons default='3'><button id='3' icon='shield'>"
            "<text line='1'>X</text></button><button id='ok'/></buttons><radio_buttons default='4'><button id='4'>"
            "<text>Y</text></button></radio_buttons><flags marquee_time='9' "
            "dialog_width='9'>show_marquee</flags>"));
        EXPECT_EQ(m_document.strings.size(), 10u);
        Load(next);
        for (const WCHAR *text :
             {config.pszWindowTitle, config.pszMainIcon, config.pszMainInstruction, config.pszContent,
              config.pszVerificationText, config.pszExpandedInformation, config.pszExpandedControlText,
              config.pszCollapsedControlText, config.pszFooterIcon, config.pszFooter})
        {
            EXPECT_EQ(text, nullptr);
        }
        EXPECT_EQ(config.cButtons + config.cRadioButtons + config.dwCommonButtons + config.dwFlags, 0u);
        EXPECT_EQ(config.nDefaultButton + config.nDefaultRadioButton, 0);
        EXPECT_EQ(config.cxWidth + static_cast<UINT>(m_document.marqueeTime), 0u);
        EXPECT_EQ(+config.pButtons, nullptr);
        EXPECT_EQ(+config.pRadioButtons, nullptr);
        EXPECT_EQ(+config.hInstance, nullptr);
        EXPECT_THAT(m_document.strings, IsEmpty());
        EXPECT_THAT(m_document.customButtons, IsEmpty());
        EXPECT_THAT(m_document.radioButtons, IsEmpty());
        EXPECT_THAT(m_document.shieldButtonIds, IsEmpty());
        EXPECT_EQ(config.cbSize, 160u);
    }
    EXPECT_EQ(m_document.selectedButton, 5);
    EXPECT_EQ(m_document.dialogWindow, reinterpret_cast<HWND>(7));
    ASSERT_TRUE(LoadParts(""));
    EXPECT_EQ(+config.lpCallbackData, reinterpret_cast<LONG_PTR>(&m_document));
    EXPECT_NE(+config.pfCallback, nullptr);
}

TEST_F(TaskDialogDocuments, AskBeforeTheBrowserAndWaitForTheUser)
{
    ASSERT_TRUE(m_document.LoadFromResource(IDX_AUTHORIZE, TEXT("TDXML"), ThisModule()));
    const TASKDIALOGCONFIG &config = m_document.config;
    EXPECT_EQ(Text(config.pszWindowTitle), TEXT("Authorize Halvora Professional"));
    EXPECT_EQ(+config.pszExpandedControlText, nullptr);
    const WideText security = Text(config.pszExpandedInformation);
    EXPECT_TRUE(security.find(TEXT("log on credentials.\n\t\nOAuth is more secure")) != security.npos);
    EXPECT_TRUE(security.find(TEXT("remains confidential.\n\t\nYou can revoke")) != security.npos);
    EXPECT_EQ(Buttons(config.pButtons, config.cButtons), TEXT("1:Authorize"));
    EXPECT_EQ(config.dwCommonButtons, TDCBF_CANCEL_BUTTON);
    EXPECT_EQ(config.dwFlags, TDF_POSITION_RELATIVE_TO_WINDOW);
    EXPECT_EQ(config.cxWidth, 215u);
    EXPECT_EQ(config.cRadioButtons, 0u);
    EXPECT_EQ(reinterpret_cast<ULONG_PTR>(config.pszMainIcon), 65533u);

    ASSERT_TRUE(m_document.LoadFromResource(IDX_COMPLETION, TEXT("TDXML"), ThisModule()));
    EXPECT_EQ(Text(config.pszWindowTitle), TEXT("Authorization Completion"));
    EXPECT_EQ(Buttons(config.pButtons, config.cButtons), TEXT("1:Authorization Granted"));
    EXPECT_EQ(config.dwCommonButtons, TDCBF_CANCEL_BUTTON);
    EXPECT_EQ(config.dwFlags, TDF_POSITION_RELATIVE_TO_WINDOW);
    EXPECT_EQ(config.cxWidth, 215u);
    EXPECT_EQ(+config.pszExpandedInformation, nullptr);

    // A resource that isn't there leaves none of this.
    EXPECT_FALSE(m_document.LoadFromResource(999, TEXT("TDXML"), ThisModule()));
    EXPECT_EQ(+config.pszWindowTitle, nullptr);
    EXPECT_FALSE(m_document.loaded);
}

// A window in place of the dialog that records the messages sent to it.
class RecordingWindow
{
public:
    RecordingWindow()
    {
        m_window =
            CreateWindowExW(0, TEXT("Static"), nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
        sent.clear();
    }
    ~RecordingWindow() { DestroyWindow(m_window); }

    HWND Handle() const { return m_window; }

    static inline std::vector<std::array<INT64, 3>> sent;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message > WM_USER)
        {
            sent.push_back({message, static_cast<INT64>(wParam), lParam});
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    HWND m_window;
};

HRESULT CALLBACK Client(HWND, UINT notification, WPARAM wParam, LPARAM lParam, LONG_PTR data)
{
    auto &seen = *reinterpret_cast<std::vector<INT64> *>(data);
    seen = {notification, static_cast<INT64>(wParam), lParam, static_cast<INT64>(RecordingWindow::sent.size())};
    return notification == TDN_BUTTON_CLICKED ? S_FALSE : S_OK;
}

TEST_F(TaskDialogDocuments, GiveALiveDialogItsShieldsAndMarqueeBeforeTheClientSeesIt)
{
    ASSERT_TRUE(LoadParts("<buttons><button id='100' icon='shield'><text line='1'>A</text></button>"
                          "<button id='50' icon='shield'><text line='1'>B</text></button></buttons>"
                          "<flags marquee_time='50'/>"));
    const RecordingWindow window;
    std::vector<INT64> seen;
    m_document.clientCallback = Client;
    m_document.clientData = reinterpret_cast<LONG_PTR>(&seen);
    const auto notify = [&](UINT notification, WPARAM wParam, LPARAM lParam) {
        return m_document.config.pfCallback(window.Handle(), notification, wParam, lParam,
                                            m_document.config.lpCallbackData);
    };
    EXPECT_EQ(notify(TDN_DIALOG_CONSTRUCTED, 0, 0), S_OK);
    EXPECT_EQ(m_document.dialogWindow, window.Handle());
    EXPECT_THAT(window.sent,
                ElementsAre(ElementsAre(1139, 100, 1), ElementsAre(1139, 50, 1), ElementsAre(1131, 1, 50)));
    EXPECT_THAT(seen, ElementsAre(TDN_DIALOG_CONSTRUCTED, 0, 0, 3));
    EXPECT_EQ(notify(TDN_BUTTON_CLICKED, 100, 9), S_FALSE);
    EXPECT_THAT(seen, ElementsAre(TDN_BUTTON_CLICKED, 100, 9, 3));
    notify(TDN_DESTROYED, 0, 0);
    EXPECT_EQ(m_document.dialogWindow, nullptr);
    EXPECT_EQ(window.sent.size(), 3u);

    m_document.clientCallback = nullptr;
    EXPECT_EQ(notify(TDN_BUTTON_CLICKED, 100, 0), S_OK);
    EXPECT_EQ(TaskDialogDocument::HandleNotification(window.Handle(), TDN_DIALOG_CONSTRUCTED, 0, 0, 0), S_OK);
    for (const char *const flags :
         {"<flags marquee_time='-5'>show_marquee</flags>", "<flags>show_marquee</flags>"})
    {
        ASSERT_TRUE(LoadParts(flags));
        notify(TDN_DIALOG_CONSTRUCTED, 0, 0);
        EXPECT_EQ(window.sent.size(), 3u) << "no time, no marquee: " << flags;
    }
}
} // namespace
