// In a program of its own that never loads the control library.
#include "core/ThisModule.h"
#include "resources/resource.h"
#include "taskdialog/TaskDialogRunner.h"
#include "tests/ui/DialogDriver_win32.h"

namespace
{
TEST(WithoutTaskDialogs, TheQuestionIsAMessageBox)
{
    const OwnerWindow owner;
    TaskDialogDocument document;
    document.loaded = true; // without loading one, which would load the control library
    document.config.cbSize = sizeof(document.config);
    ASSERT_EQ(GetModuleHandleW(TEXT("comctl32")), nullptr);
    for (const int button : {IDOK, IDCANCEL})
    {
        WideText texts;
        RECT place{};
        {
            const DialogDriver driver(TEXT("Authorize Halvora Professional"), [&](HWND dialog) {
                texts = TextsOf(dialog);
                place = PlaceOf(dialog);
                SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
            });
            EXPECT_EQ(
                ShowTaskDialog(document, owner.Handle(), true, {IDS_AUTHORIZE_CAPTION, IDS_AUTHORIZE_TEXT, true}),
                button);
        }
        EXPECT_TRUE(texts.find(TEXT("If you click OK, you will be taken to a web page in your web browser")) !=
                    WideText::npos);
        ExpectCentred(place, PlaceOf(owner.Handle()));
        EXPECT_TRUE(AnotherThreadCanHook());
    }
}
} // namespace
