#include "tests/hostwindow/HostProgram_win32.h"
#include "tests/hostwindow/TrialPlugin_win32.h"

#include "host/InitData.h"
#include "host/window/HostWindow_win32.h"
#include "host/window/resource.h"
#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/ui/DialogDriver_win32.h"

#include <gmock/gmock.h>

#include <shlobj.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
const std::wstring ClassKey = std::wstring(L"CLSID\\") + TrialPluginText;

// The trial plug-in among the classes and in the category of publishing plug-ins, while this lives.
class TrialRegistration
{
public:
    TrialRegistration()
    {
        const std::filesystem::path file(HALVORA_TRIAL_PLUGIN);
        Write(L"\\InprocServer32", nullptr, std::filesystem::absolute(file).make_preferred().wstring());
        Write(L"\\InprocServer32", L"ThreadingModel", L"Both");
        Write(L"\\Implemented Categories\\{5EE4545B-143B-4f11-B9B3-F919653EB62F}", nullptr, L"");
    }
    ~TrialRegistration() { RegDeleteTreeW(HKEY_CLASSES_ROOT, ClassKey.c_str()); }
    TrialRegistration(const TrialRegistration &) = delete;
    TrialRegistration &operator=(const TrialRegistration &) = delete;

private:
    static void Write(const std::wstring &key, const wchar_t *name, const std::wstring &text)
    {
        EXPECT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, (ClassKey + key).c_str(), name, REG_SZ, text.c_str(),
                                  static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    }
};

class HostWindowTest : public testing::Test
{
protected:
    std::filesystem::path Sample(const char *name) const
    {
        const auto file = m_folder.Path() / name;
        std::filesystem::create_directories(file.parent_path());
        MakeSample(file, 300 + m_made++, 200); // each its own bytes
        return file;
    }
    std::filesystem::path Profile() const { return m_folder.Path() / "profile"; }

    void Authorize() const
    {
        AccountData account;
        account.token = L"trial-token";
        account.tokenSecret = L"trial-secret";
        m_folder.Write("profile/init-data.bin", ComposeInitData(account));
    }
    bool IsKeptAuthorized() const
    {
        const auto account =
            ParseInitData(ParseInitDataFile(m_folder.Read("profile/init-data.bin")).value_or("(damaged)"));
        return account && account->IsAuthorized();
    }

    void LetOnePictureEnd() const { SetEvent(m_next.Get()); }

    // Begins the run and waits for its first words.
    static void Publish(const HostProgram &host, const wchar_t *status)
    {
        ASSERT_TRUE(host.AwaitEnabled(IDC_PUBLISH, true));
        host.Press(IDC_PUBLISH);
        ASSERT_TRUE(host.AwaitText(IDC_STATUS, status));
    }

    TemporaryFolder m_folder;
    mutable int m_made = 0;
    const FileOwner m_next{CreateEventW(nullptr, FALSE, FALSE, NextPicture)};
};

class WithPlugin : public HostWindowTest
{
    const TrialRegistration m_registration;
};

using HostWithoutPlugin = HostWindowTest;
using HostWithPlugin = WithPlugin;
using HostLayout = WithPlugin;
using HostRun = WithPlugin;

// Pixels of the window's part on the screen that are nearly of the colour.
size_t CountPixels(HWND part, COLORREF colour)
{
    const RECT place = PlaceOf(part);
    const int width = place.right - place.left, height = place.bottom - place.top;
    const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
    BITMAPINFO layout{};
    layout.bmiHeader = {sizeof(layout.bmiHeader), width, -height, 1, 32};
    void *bits = nullptr;
    const BitmapOwner bitmap(CreateDIBSection(screen, &layout, DIB_RGB_COLORS, &bits, nullptr, 0));
    const HGDIOBJ before = SelectObject(memory, bitmap.Get());
    BitBlt(memory, 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
    GdiFlush();
    const auto *const pixels = static_cast<const DWORD *>(bits);
    const auto isNear = [](int a, int b) { return std::abs(a - b) < 24; };
    const auto count = std::count_if(pixels, pixels + static_cast<size_t>(width) * height, [&](DWORD pixel) {
        return isNear(pixel >> 16 & 0xFF, GetRValue(colour)) && isNear(pixel >> 8 & 0xFF, GetGValue(colour)) &&
               isNear(pixel & 0xFF, GetBValue(colour));
    });
    SelectObject(memory, before);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return static_cast<size_t>(count);
}

std::wstring ClipboardText()
{
    std::wstring text;
    if (OpenClipboard(nullptr))
    {
        const HANDLE content = GetClipboardData(CF_UNICODETEXT);
        const auto *const words = content != nullptr ? static_cast<const wchar_t *>(GlobalLock(content)) : nullptr;
        if (words != nullptr)
        {
            text = words;
            GlobalUnlock(content);
        }
        CloseClipboard();
    }
    return text;
}

RECT PlaceIn(HWND window, HWND part)
{
    RECT place = PlaceOf(part);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT *>(&place), 2);
    return place;
}
} // namespace

TEST_F(HostWithoutPlugin, ShowsPicturesAndRefusesTheRest)
{
    Sample("folder/deep.png");
    const HostProgram host(Profile(),
                           {Sample("pair.jpg"), Sample("pair.tif"), m_folder.Write("notes.txt", "words"),
                            m_folder.Path() / "missing.jpg", m_folder.Path() / "folder"});
    EXPECT_THAT(host.Rows(IDC_PICTURES), ElementsAre(L"pair.jpg", L"deep.png"));
    EXPECT_TRUE(host.AwaitLog(L"notes.txt"));
    EXPECT_TRUE(host.AwaitLog(L"missing.jpg"));
    // A quarter of each is green; the frame that stands there before a thumbnail has none.
    EXPECT_TRUE(WaitFor([&] { return CountPixels(host.Part(IDC_PICTURES), RGB(0, 255, 0)) > 2 * 1200; }));
}

TEST_F(HostWithoutPlugin, TellsWhatToDoAndRemovesWhatIsSelected)
{
    const HostProgram host(Profile(), {Sample("one.jpg"), Sample("two.jpg")});
    EXPECT_TRUE(host.AwaitText(IDC_STATE, L"install.cmd"));
    EXPECT_FALSE(host.IsEnabled(IDC_PUBLISH));
    EXPECT_FALSE(host.IsEnabled(IDC_CANCEL));
    EXPECT_TRUE(host.IsEnabled(IDC_ADD));
    EXPECT_FALSE(host.IsEnabled(IDC_REMOVE));
    host.Choose(ID_SELECT_ALL);
    EXPECT_TRUE(host.AwaitEnabled(IDC_REMOVE, true));
    PostMessageW(host.Part(IDC_PICTURES), WM_KEYDOWN, VK_DELETE, 1);
    EXPECT_TRUE(WaitFor([&] { return host.Rows(IDC_PICTURES).empty(); }));
    EXPECT_TRUE(host.AwaitEnabled(IDC_REMOVE, false));
    host.Close();
    EXPECT_EQ(host.AwaitEnd(), 0u);
}

TEST_F(HostWithoutPlugin, OpensFilesByTheSystemsDialog)
{
    const HostProgram host(Profile(), {});
    host.Press(IDC_ADD);
    const HWND dialog = host.AwaitQuestion();
    ASSERT_NE(dialog, nullptr);
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(WaitFor([&] { return !IsWindow(dialog); }));
    EXPECT_TRUE(host.Rows(IDC_PICTURES).empty());
}

// In the test's own program: what is dropped lies in its memory.
TEST_F(HostWithoutPlugin, TakesWhatIsDropped)
{
    Sample("folder/two.png");
    Sample("folder/deeper/three.jpg");
    const std::wstring names =
        Sample("one.jpg").wstring() + L'\0' + (m_folder.Path() / "folder").wstring() + L'\0';
    const size_t bytes = (names.size() + 1) * sizeof(wchar_t);
    const HGLOBAL drop = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
    auto *const content = static_cast<DROPFILES *>(GlobalLock(drop));
    content->pFiles = sizeof(DROPFILES);
    content->fWide = TRUE;
    memcpy(content + 1, names.c_str(), bytes);
    GlobalUnlock(drop);

    CoInitialize(nullptr);
    {
        const ::Profile profile(Profile());
        const HostWindow host(profile);
        SendMessageW(host.Get(), WM_DROPFILES, reinterpret_cast<WPARAM>(drop), 0); // which frees it
        EXPECT_EQ(SendDlgItemMessageW(host.Get(), IDC_PICTURES, LVM_GETITEMCOUNT, 0, 0), 3);
    }
    CoUninitialize();
}

TEST_F(HostWithPlugin, AsksForAuthorizationFollowsLinksAndKeepsTheAccount)
{
    const HostProgram host(Profile(), {Sample("one.jpg")});
    EXPECT_EQ(host.Text(IDC_PLUGIN_NAME), L"Publish for trial");
    EXPECT_THAT(host.Text(IDC_PLUGIN_VERSION), HasSubstr(L"7.5 (Build 3)"));
    EXPECT_TRUE(host.AwaitText(IDC_STATE, L"needs your leave"));
    EXPECT_EQ(host.Text(IDC_PUBLISH), L"Au&thorize...");
    host.Press(IDC_PUBLISH);
    EXPECT_TRUE(host.AwaitText(IDC_STATE, L"Settings..."));
    EXPECT_TRUE(host.AwaitText(IDC_PUBLISH, L"&Publish"));
    EXPECT_TRUE(host.AwaitEnabled(IDC_PUBLISH, true));
    // Not only at the program's end.
    EXPECT_TRUE(IsKeptAuthorized());
    host.Follow(IDC_STATE, L"settings");
    EXPECT_TRUE(host.AwaitText(IDC_STATE, L"needs your leave"));
    EXPECT_TRUE(WaitFor([&] { return !IsKeptAuthorized(); }));
}

TEST_F(HostRun, PublishesAndMarksWhatBecameOfEach)
{
    Authorize();
    const HostProgram host(Profile(), {Sample("one.jpg"), Sample("bad.jpg"), Sample("two.jpg")});
    Publish(host, L"Picture 1 of 3");
    EXPECT_TRUE(host.IsAlive());
    EXPECT_FALSE(SendMessageW(host.Window(), WM_QUERYENDSESSION, 0, 0)) << "the user's session ends under the run";
    EXPECT_TRUE(host.AwaitEnabled(IDC_CANCEL, true));
    EXPECT_FALSE(host.IsEnabled(IDC_PUBLISH));
    EXPECT_FALSE(host.IsEnabled(IDC_ADD));
    EXPECT_TRUE(WaitFor([&] { return SendMessageW(host.Part(IDC_PROGRESS), PBM_GETPOS, 0, 0) == 50; }));
    // Badges: green for a published picture, red for a failed one, each when it is over.
    const auto pixels = [&](COLORREF colour) { return CountPixels(host.Part(IDC_PICTURES), colour); };
    const COLORREF green = RGB(16, 124, 16), red = RGB(196, 43, 28);
    LetOnePictureEnd();
    EXPECT_TRUE(host.AwaitText(IDC_STATUS, L"Picture 2 of 3"));
    EXPECT_TRUE(WaitFor([&] { return pixels(green) > 150; }));
    EXPECT_EQ(pixels(red), 0u);
    LetOnePictureEnd();
    EXPECT_TRUE(host.AwaitText(IDC_STATUS, L"Picture 3 of 3"));
    LetOnePictureEnd();
    EXPECT_TRUE(host.AwaitText(IDC_STATUS, L"Trial done."));
    EXPECT_TRUE(host.AwaitLog(L"Published 2 of 3 pictures"));
    EXPECT_THAT(host.Log(), HasSubstr(L"bad.jpg"));
    EXPECT_THAT(host.Log(), HasSubstr(L"The trial wants better pictures."));
    EXPECT_THAT(host.Log(), testing::Not(HasSubstr(L"Extensions are"))) << "details are not asked for";
    host.Press(IDC_DETAILS);
    EXPECT_TRUE(host.AwaitLog(L"Extensions are jpg"));

    host.SelectLog();
    host.Choose(ID_COPY_LOG);
    EXPECT_TRUE(WaitFor([] { return ClipboardText().find(L"Error: Could not publish") != std::wstring::npos; }));
    EXPECT_THAT(ClipboardText(), HasSubstr(L"\r\nDetail: Extensions are jpg\r\n"));

    EXPECT_TRUE(SendMessageW(host.Window(), WM_QUERYENDSESSION, 0, 0));

    EXPECT_TRUE(WaitFor([&] { return pixels(green) > 300 && pixels(red) > 150; }));
}

TEST_F(HostRun, LeavesOutWhatAnotherWindowPublished)
{
    Authorize();
    const std::vector<std::filesystem::path> one = {Sample("one.jpg")};
    {
        const HostProgram host(Profile(), one);
        Publish(host, L"Picture 1 of 1");
        LetOnePictureEnd();
        ASSERT_TRUE(host.AwaitText(IDC_STATUS, L"Trial done."));
    }
    {
        const HostProgram host(Profile(), one);
        EXPECT_TRUE(host.AwaitText(IDC_STATUS, L"Nothing here is left"));
        ASSERT_TRUE(host.AwaitEnabled(IDC_PUBLISH, true));
        host.Press(IDC_PUBLISH);
        const HWND question = host.AwaitQuestion();
        ASSERT_NE(question, nullptr) << "published again without a word";
        PostMessageW(question, WM_COMMAND, IDYES, 0);
        ASSERT_TRUE(host.AwaitText(IDC_STATUS, L"Picture 1 of 1"));
    } // ends the program in the middle
    const HostProgram host(Profile(), {one[0], Sample("two.jpg")});
    EXPECT_TRUE(host.AwaitText(IDC_STATUS, L"1 picture to publish"));
}

TEST_F(HostRun, IsCancelledInTwoSteps)
{
    Authorize();
    const HostProgram host(Profile(), {Sample("one.jpg"), Sample("busy.jpg"), Sample("three.jpg")});
    Publish(host, L"Picture 1 of 3");
    const std::wstring firstStep = host.Text(IDC_CANCEL);
    host.Press(IDC_CANCEL);
    EXPECT_TRUE(WaitFor([&] { return host.Text(IDC_CANCEL) != firstStep; }));
    LetOnePictureEnd();
    EXPECT_TRUE(host.AwaitText(IDC_STATUS, L"Trial cancelled."));
    EXPECT_TRUE(host.AwaitLog(L"Published 1 of 3 pictures"));
    Publish(host, L"Picture 1 of 2");
    EXPECT_EQ(host.Text(IDC_CANCEL), firstStep);
    // Also while the service has asked for a pause.
    LetOnePictureEnd();
    EXPECT_TRUE(host.AwaitLog(L"Flickr asks for a pause: going on in 300 seconds."));
    EXPECT_FALSE(WaitFor([&] { return host.Text(IDC_STATUS) == L"Picture 2 of 2"; }, 500));
    host.Press(IDC_CANCEL);
    EXPECT_TRUE(host.AwaitText(IDC_STATUS, L"Trial cancelled."));
}

TEST_F(HostRun, IsNotTornByClosingTheWindow)
{
    Authorize();
    const HostProgram host(Profile(), {Sample("one.jpg"), Sample("two.jpg")});
    Publish(host, L"Picture 1 of 2");
    host.Close();
    const HWND stay = host.AwaitQuestion();
    ASSERT_NE(stay, nullptr);
    PostMessageW(stay, WM_COMMAND, IDNO, 0);
    LetOnePictureEnd();
    EXPECT_TRUE(host.AwaitText(IDC_STATUS, L"Picture 2 of 2"));
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(stay); }));
    host.Close();
    const HWND leave = host.AwaitQuestion();
    ASSERT_NE(leave, nullptr);
    PostMessageW(leave, WM_COMMAND, IDYES, 0);
    EXPECT_EQ(host.AwaitEnd(), 0u);
    EXPECT_TRUE(IsKeptAuthorized());
}

TEST_F(HostLayout, HoldsEverythingInEverySize)
{
    Authorize();
    const HostProgram host(Profile(), {Sample("one.jpg")});
    ASSERT_TRUE(host.AwaitText(IDC_STATE, L"Settings..."));
    for (const SIZE size : {SIZE{100, 100}, SIZE{1200, 500}, SIZE{700, 1000}})
    {
        SetWindowPos(host.Window(), nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
        ASSERT_TRUE(host.IsAlive());
        const RECT window = PlaceOf(host.Window());
        EXPECT_GE(window.bottom - window.top, std::min<LONG>(size.cy, 300));
        RECT client{};
        GetClientRect(host.Window(), &client);
        const std::vector<HWND> parts = host.Parts();
        for (size_t i = 0; i < parts.size(); ++i)
        {
            const RECT place = PlaceIn(host.Window(), parts[i]);
            const int id = GetDlgCtrlID(parts[i]);
            RECT both{};
            EXPECT_TRUE(IntersectRect(&both, &place, &client) && EqualRect(&both, &place))
                << id << " isn't whole in " << size.cx << "x" << size.cy;
            for (size_t other = i + 1; other < parts.size(); ++other)
            {
                const RECT another = PlaceIn(host.Window(), parts[other]);
                EXPECT_FALSE(IntersectRect(&both, &place, &another))
                    << id << " lies on " << GetDlgCtrlID(parts[other]) << " in " << size.cx << "x" << size.cy;
            }
        }
        for (const int id : {IDC_ADD, IDC_REMOVE, IDC_PUBLISH, IDC_CANCEL})
        {
            const RECT place = PlaceOf(host.Part(id));
            const SIZE ideal = host.IdealSizeOf(host.Part(id));
            EXPECT_GT(ideal.cx, 0);
            EXPECT_GE(place.right - place.left, ideal.cx) << id;
            EXPECT_GE(place.bottom - place.top, ideal.cy) << id;
        }
        const RECT state = PlaceOf(host.Part(IDC_STATE));
        EXPECT_GE(state.bottom - state.top, host.IdealHeightOf(host.Part(IDC_STATE), state.right - state.left));
    }
}
