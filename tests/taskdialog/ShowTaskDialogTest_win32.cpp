#include "core/ThisModule.h"
#include "resources/resource.h"
#include "taskdialog/TaskDialogRunner.h"
#include "tests/ui/DialogDriver_win32.h"

#include <cstring>

namespace
{
constexpr MessageBoxFallback Authorize = {IDS_AUTHORIZE_CAPTION, IDS_AUTHORIZE_TEXT, true};
constexpr MessageBoxFallback Completion = {IDS_COMPLETION_CAPTION, IDS_COMPLETION_TEXT, false};

bool Has(const WideText &texts, const WCHAR *text)
{
    return texts.find(text) != WideText::npos;
}

// The host has loaded the control library.
class Dialogs : public testing::Test
{
protected:
    void SetUp() override
    {
        m_controls = LoadLibraryW(TEXT("comctl32"));
        ASSERT_NE(GetProcAddress(m_controls, "TaskDialogIndirect"), nullptr);
    }
    void TearDown() override
    {
        FreeLibrary(m_controls);
        EXPECT_TRUE(AnotherThreadCanHook());
    }

    void Load(const char *text)
    {
        ASSERT_TRUE(m_document.LoadDocument({reinterpret_cast<const BYTE *>(text), std::strlen(text)}));
    }

    HMODULE m_controls = nullptr;
    OwnerWindow m_owner;
    TaskDialogDocument m_document;
};

TEST_F(Dialogs, AskForPermission)
{
    ASSERT_TRUE(m_document.LoadFromResource(IDX_AUTHORIZE, TEXT("TDXML"), ThisModule()));
    for (const int button : {1, IDCANCEL})
    {
        WideText texts;
        RECT place{};
        {
            const DialogDriver driver(TEXT("Authorize Halvora Professional"), [&](HWND dialog) {
                texts = TextsOf(dialog);
                place = PlaceOf(dialog);
                EXPECT_EQ(m_document.dialogWindow, dialog);
                PostMessageW(dialog, TDM_CLICK_BUTTON, static_cast<WPARAM>(button), 0);
            });
            EXPECT_EQ(ShowTaskDialog(m_document, m_owner.Handle(), true, Authorize), button);
        }
        EXPECT_EQ(m_document.selectedButton, button);
        EXPECT_EQ(m_document.dialogWindow, nullptr);
        EXPECT_TRUE(Has(texts, TEXT("Halvora needs your permission to publish images to Flickr.")));
        EXPECT_TRUE(Has(texts, TEXT("If you click Authorize, you will be taken to a web page")));
        EXPECT_TRUE(Has(texts, TEXT("Authorize\n")));
        EXPECT_TRUE(Has(texts, TEXT("Security considerations")));
        ExpectCentred(place, PlaceOf(m_owner.Handle()));
    }
}

// The platform itself would put this one in the middle of the screen.
TEST_F(Dialogs, AreCentredByTheHookAlone)
{
    Load("<task_dialog version='1'><title>Centred dialog</title><content>Text</content></task_dialog>");
    for (const bool centred : {true, false})
    {
        RECT place{};
        {
            const DialogDriver driver(TEXT("Centred dialog"), [&](HWND dialog) {
                place = PlaceOf(dialog);
                PostMessageW(dialog, TDM_CLICK_BUTTON, IDOK, 0);
            });
            EXPECT_EQ(ShowTaskDialog(m_document, m_owner.Handle(), centred, Authorize), IDOK);
        }
        const RECT owner = PlaceOf(m_owner.Handle());
        const LONG middle = (owner.left + owner.right) / 2 - (place.right - place.left) / 2;
        EXPECT_EQ(place.left == middle, centred);
    }
}

TEST_F(Dialogs, GiveBackAllThatTheUserChose)
{
    Load("<task_dialog version='1'><title>Choices</title><checkbox>Check</checkbox><buttons><button id='30'>"
         "<text line='1'>Thirty</text></button></buttons><radio_buttons default='12'>"
         "<button id='11'><text>A</text></button>"
         "<button id='12'><text>B</text></button></radio_buttons></task_dialog>");
    {
        const DialogDriver driver(TEXT("Choices"), [&](HWND dialog) {
            SendMessageW(dialog, TDM_CLICK_VERIFICATION, TRUE, FALSE);
            PostMessageW(dialog, TDM_CLICK_BUTTON, 30, 0);
        });
        EXPECT_EQ(ShowTaskDialog(m_document, m_owner.Handle(), true, Authorize), 30);
    }
    EXPECT_EQ(m_document.selectedRadioButton, 12);
    EXPECT_TRUE(m_document.verificationChecked);
}

TEST_F(Dialogs, ThatThePlatformRefusesBecomeMessageBoxes)
{
    Load("<task_dialog version='1'/>");
    m_document.config.cbSize = 1;
    const DialogDriver driver(TEXT("Authorize Halvora Professional"),
                              [](HWND dialog) { SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0); });
    EXPECT_EQ(ShowTaskDialog(m_document, m_owner.Handle(), true, Authorize), IDCANCEL);
}

TEST_F(Dialogs, OfAWindowThatIsGoneDoNotStayInTheWay)
{
    HWND gone = nullptr;
    {
        const OwnerWindow owner;
        gone = owner.Handle();
    }
    Load("<task_dialog version='1'/>");
    ShowTaskDialog(m_document, gone, true, Authorize);
    EXPECT_EQ(m_document.dialogWindow, nullptr);
    EXPECT_TRUE(AnotherThreadCanHook());
}

TEST_F(Dialogs, ThatDoNotLoadBecomeMessageBoxes)
{
    m_document.LoadFromResource(999, TEXT("TDXML"), ThisModule());
    WideText texts;
    {
        const DialogDriver driver(TEXT("Authorization Completion"), [&](HWND dialog) {
            texts = TextsOf(dialog);
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        });
        EXPECT_EQ(ShowTaskDialog(m_document, m_owner.Handle(), false, Completion), IDOK);
    }
    EXPECT_TRUE(Has(texts, TEXT("Once you've granted permission for Halvora in your web browser, click the OK")));
}
} // namespace
