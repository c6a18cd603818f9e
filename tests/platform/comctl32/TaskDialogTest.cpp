#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

namespace
{
TEST(TaskDialog, RefusesWhatIsNoRecord)
{
    using Show = HRESULT(WINAPI *)(const TASKDIALOGCONFIG *, int *, int *, BOOL *);
    const HMODULE controls = GetModuleHandleW(TEXT("comctl32"));
    ASSERT_NE(controls, nullptr);
    const auto show =
        reinterpret_cast<Show>(reinterpret_cast<void *>(GetProcAddress(controls, "TaskDialogIndirect")));
    ASSERT_NE(show, nullptr);
    int button = 77;
    EXPECT_EQ(show(nullptr, &button, nullptr, nullptr), E_INVALIDARG);
    for (const UINT size : {0u, 159u, 161u})
    {
        TASKDIALOGCONFIG config{};
        config.cbSize = size;
        EXPECT_EQ(show(&config, &button, nullptr, nullptr), E_INVALIDARG) << size;
    }
}
} // namespace
