// The settings sheet, opened by the host's verb and driven through its real windows.
#include "account/AccountRecord.h"
#include "plugin/FlickrPublisher.h"
#include "plugin/InitDataStream.h"
#include "resources/resource.h"
#include "settings/FlickrProperties_win32.h"
#include "settings/SettingsSheet.h"
#include "tests/doubles/PublishFixture.h"
#include "tests/sheet/SheetDriver.h"

#include <gmock/gmock.h>

#include <fstream>

namespace
{
enum Pages
{
    PagePhotos,
    PageOptions,
    PageJpeg,
    PageRaw,
    PageAbout
};

constexpr const WCHAR *PhotosUrl = TEXT("halvora-test:photos");

// Of an account that was read once.
std::string InitDataOf(bool isAuthorized)
{
    AccountRecord account;
    account.OAuthToken = isAuthorized ? BstrOwner(TEXT("t")) : BstrOwner();
    account.OAuthTokenSecret = isAuthorized ? BstrOwner(TEXT("s")) : BstrOwner();
    account.UserName = BstrOwner(TEXT("jane"));
    account.FullName = BstrOwner(TEXT("Jane Doe"));
    account.PhotosUrl = BstrOwner(PhotosUrl);
    account.AccountType = BstrOwner(TEXT("Basic"));
    account.MaxFileSize = 1048576;
    const auto stream = MemoryStream::Make();
    WriteInitData(stream.Get(), account);
    return stream->Content;
}

class SettingsSheet : public testing::Test
{
protected:
    SettingsSheet()
    {
        Fixture.Stream->Content = InitDataOf(true);
        m_owner = CreateWindowExW(0, WC_STATIC, TEXT("owner"), WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 900,
                                  700, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(CFlickrPublisher::CreateInstance(nullptr, __uuidof(IHalvoraPublishingPlugin), Plugin.PutVoid()),
                  S_OK);
        EXPECT_EQ(Plugin->Initialize(Fixture.Host.Get(), 1033, Fixture.Stream.Get(), 0), S_OK);
    }

    ~SettingsSheet() override { DestroyWindow(m_owner); }

    HRESULT Configure(std::function<void(const OpenSheet &)> act)
    {
        SheetDriver driver(std::move(act));
        WideText verb = TEXT("Settings");
        WideText parameters = TEXT("parameters");
        return Plugin->Configure(m_owner, verb.data(), parameters.data());
    }

    // Makes the next sheet open on its first page.
    void TurnToFirstPage()
    {
        EXPECT_EQ(Configure([](const OpenSheet &sheet) { sheet.SelectPage(PagePhotos); }), S_OK);
    }

    // Token and secret as the plug-in gives them back to the host.
    std::string StoredAccount()
    {
        EXPECT_EQ(Plugin->Terminate(), S_OK);
        return Fixture.Stream->Content;
    }

    PublishFixture Fixture;
    ComPtr<IHalvoraPublishingPlugin> Plugin;
    HWND m_owner = nullptr;
};

// Registers a program of ours for addresses that begin with "halvora-test:". For the machine, since Wine doesn't
// read a user's own classes.
class OpenedAddress
{
public:
    OpenedAddress()
    {
        const auto temporary = std::filesystem::temp_directory_path();
        m_file = temporary / ("halvora-opened-" + std::to_string(GetCurrentProcessId()) + ".txt");
        std::filesystem::remove(m_file);
        const std::filesystem::path program(HALVORA_PAGE_OPENER);
        const WideText command = TEXT("\"") + std::filesystem::absolute(program).make_preferred().wstring() +
                                 TEXT("\" \"") + m_file.wstring() + TEXT("\" \"%1\"");
        Write(TEXT("halvora-test"), TEXT("URL Protocol"), TEXT(""));
        Write(TEXT("halvora-test\\shell\\open\\command"), nullptr, command);
    }
    ~OpenedAddress()
    {
        RegDeleteTreeW(HKEY_CLASSES_ROOT, TEXT("halvora-test"));
        std::error_code ignored;
        std::filesystem::remove(m_file, ignored);
    }

    std::string Wait() const
    {
        std::string address;
        WaitFor([&] {
            std::ifstream file(m_file);
            std::getline(file, address);
            return !address.empty();
        });
        return address;
    }

private:
    static void Write(const WCHAR *path, const WCHAR *name, const WideText &text)
    {
        RegistryKeyOwner key;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, path, 0, nullptr, 0, KEY_WRITE, nullptr, key.Put(), nullptr),
                  ERROR_SUCCESS);
        RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                       static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    }

    std::filesystem::path m_file;
};
} // namespace

TEST_F(SettingsSheet, SavesThePagesThatWereShownAndNoOthers)
{
    TurnToFirstPage();
    Fixture.Settings.MarkAll();
    Fixture.Settings.Set(TEXT("IsPublic"), 0u);
    Fixture.Settings.Set(TEXT("AsyncUpload"), 0u);
    EXPECT_EQ(Configure([](const OpenSheet &sheet) {
                  EXPECT_EQ(sheet.SelectedPage(), PagePhotos);
                  EXPECT_TRUE(sheet.IsChecked(IDC_WRITE_TITLE));
                  EXPECT_TRUE(sheet.IsChecked(IDC_VISIBLE_TO_FRIENDS_AND_FAMILY));
                  sheet.Click(IDC_WRITE_TITLE);
                  sheet.Click(IDC_VISIBLE_TO_FAMILY);
                  EXPECT_FALSE(sheet.IsChecked(IDC_VISIBLE_TO_FRIENDS_AND_FAMILY));
                  sheet.SelectPage(PageOptions);
                  EXPECT_TRUE(sheet.IsChecked(IDC_SAFETY_SAFE)) << "a value without a button shows as the first";
                  sheet.Click(IDC_SAFETY_RESTRICTED);
                  sheet.Click(IDC_SEARCH_HIDE);
                  EXPECT_TRUE(sheet.IsChecked(IDC_CONTENT_PHOTOS)) << "each group by itself";
                  sheet.Close(IDOK);
              }),
              S_OK);
    EXPECT_EQ(Fixture.Settings.Written(), "AsyncUpload=0 WriteTitle=0 WriteDescription=1 WriteTags=1 IsPublic=0 "
                                          "IsFriend=0 IsFamily=1 SafetyLevel=2 ContentType=0 SearchVisibility=1");
}

TEST_F(SettingsSheet, SavesThePhotosPageThoughAnotherIsOnTop)
{
    EXPECT_EQ(Configure([](const OpenSheet &sheet) { sheet.SelectPage(PageAbout); }), S_OK);
    Fixture.Settings.RemoveKey();
    SettingsKey fresh;
    EXPECT_EQ(Configure([](const OpenSheet &sheet) {
                  EXPECT_EQ(sheet.SelectedPage(), PageAbout);
                  sheet.Close(IDOK);
              }),
              S_OK);
    const SettingsReader reader;
    EXPECT_EQ(reader.Number(TEXT("WriteTitle")), 0u) << "as the page shows it of a fresh account";
    UINT32 options = 99;
    reader.ReadInto(TEXT("SafetyLevel"), options);
    EXPECT_EQ(options, 99u);
}

TEST_F(SettingsSheet, CancelSavesNothingAndRevokesNothing)
{
    TurnToFirstPage();
    Fixture.Settings.MarkAll();
    EXPECT_EQ(Configure([](const OpenSheet &sheet) {
                  sheet.Click(IDC_ASYNC_UPLOAD);
                  for (const int page : {PageOptions, PageJpeg, PageRaw, PageAbout})
                  {
                      sheet.SelectPage(page);
                  }
                  sheet.Click(IDC_REVOKE);
                  EXPECT_TRUE(sheet.IsChecked(IDC_REVOKE));
                  sheet.Close(IDCANCEL);
              }),
              S_OK);
    EXPECT_EQ(Fixture.Settings.Written(), "");
    const std::string before = Fixture.Stream->Content;
    EXPECT_EQ(StoredAccount(), before);
}

TEST_F(SettingsSheet, OpensWithThePageThatWasOnTopLastAndTheFocusOnItsFirstControl)
{
    constexpr int titleBar = 0;
    const struct
    {
        int page;
        int closedBy;
        UINT focus;
    } cases[] = {
        {PageAbout, IDCANCEL, IDC_ACCOUNT},       {PageRaw, IDOK, IDC_MINIMIZE},
        {PageJpeg, titleBar, IDC_MODE_PROCESSED}, {PageOptions, titleBar, IDC_SAFETY_SAFE},
        {PagePhotos, IDCANCEL, IDC_WRITE_TITLE},
    };
    Fixture.Settings.Set(TEXT("JPEGMode"), 2u);
    for (const auto &[page, closedBy, focus] : cases)
    {
        SCOPED_TRACE(page);
        Configure([page = page, closedBy = closedBy](const OpenSheet &sheet) {
            sheet.SelectPage(page);
            closedBy == titleBar ? sheet.CloseByTitleBar() : sheet.Close(closedBy);
        });
        Configure([page = page, focus = focus](const OpenSheet &sheet) {
            EXPECT_EQ(sheet.SelectedPage(), page);
            const HWND first = sheet.Control(focus);
            EXPECT_TRUE(WaitFor([&] { return sheet.Focus() == first; }))
                << "the focus is on " << GetDlgCtrlID(sheet.Focus());
        });
    }
}

TEST_F(SettingsSheet, ClicksAreFollowedByTheRulesOfThePage)
{
    Fixture.Settings.Set(TEXT("JPEGMode"), 1u);
    Fixture.Settings.Set(TEXT("JPEGWriteIPTC"), 1u);
    Configure([](const OpenSheet &sheet) {
        sheet.SelectPage(PageJpeg);
        EXPECT_FALSE(sheet.IsEnabled(IDC_OUTPUT_SIZE));
        sheet.Click(IDC_MODE_PROCESSED);
        EXPECT_TRUE(sheet.IsEnabled(IDC_OUTPUT_SIZE));
        sheet.Click(IDC_WRITE_XMP);
        sheet.Click(IDC_MODE_AS_IS);
        EXPECT_FALSE(sheet.IsEnabled(IDC_WRITE_XMP));
        EXPECT_TRUE(sheet.IsChecked(IDC_WRITE_XMP));
        sheet.Close(IDOK);
    });
    const SettingsReader reader;
    EXPECT_EQ(reader.Number(TEXT("JPEGMode")), 0u);
    EXPECT_EQ(reader.Number(TEXT("JPEGWriteXMP")), 1u);
    EXPECT_EQ(reader.Number(TEXT("JPEGWriteIPTC")), 1u);
}

TEST_F(SettingsSheet, ATypedSizeIsCutAndStoredInItsDisplayForm)
{
    const WCHAR *const typed = TEXT("0000000000000000000000000000500 px and m");
    Configure([&](const OpenSheet &sheet) {
        sheet.SelectPage(PageRaw);
        EXPECT_EQ(sheet.Text(IDC_OUTPUT_SIZE), TEXT("Original"));
        EXPECT_EQ(SendMessageW(sheet.Control(IDC_OUTPUT_SIZE), CB_GETCOUNT, 0, 0), 8);
        EXPECT_EQ(SendMessageW(sheet.Control(IDC_OUTPUT_SIZE), CB_GETITEMDATA, 7, 0), 2048);
        sheet.Type(IDC_OUTPUT_SIZE, typed);
        EXPECT_EQ(sheet.Text(IDC_OUTPUT_SIZE), typed);
        sheet.Close(IDOK);
    });
    EXPECT_EQ(Narrow(SettingsReader().Text(TEXT("RAWLongDimension"))), "500 px");
}

TEST_F(SettingsSheet, TheAboutPageShowsTheAccountAnewAtEachVisit)
{
    AccountRecord account;
    SheetAccount shown{account, TEXT("1.96 (Build 401)"), TEXT("Copyright"), [] { return S_OK; }};
    SheetDriver driver([&](const OpenSheet &sheet) {
        for (const WCHAR *name : {TEXT("Jane Doe"), TEXT("Jane Roe")})
        {
            sheet.SelectPage(PagePhotos);
            account.FullName = BstrOwner(name);
            sheet.SelectPage(PageAbout);
            EXPECT_EQ(sheet.Text(IDC_VERSION), TEXT("Halvora Publish to Flickr Plugin Version 1.96 (Build 401)"));
            EXPECT_EQ(sheet.Text(IDC_COPYRIGHT), TEXT("Copyright"));
            EXPECT_TRUE(WaitFor([&] {
                return sheet.Text(IDC_ACCOUNT) ==
                       TEXT("Name=") + WideText(name) +
                           TEXT(", Type=, MaxFileSize=0 bytes, UploadLeftThisMonth=0 bytes, URL=");
            })) << Narrow(sheet.Text(IDC_ACCOUNT));
        }
    });
    ShowSettingsSheet(m_owner, shown);
}

TEST_F(SettingsSheet, ARefreshThatFailsIsToldOverTheSheetAndLeavesThePair)
{
    Fixture.Web.FailOperation("RestRequest", E_FAIL);
    Configure([](const OpenSheet &sheet) {
        sheet.SelectPage(PageAbout);
        sheet.ClickLink(sheet.Control(IDC_REFRESH));
        const HWND box = sheet.WaitForDialog(TEXT("Publish to Flickr"));
        ASSERT_NE(box, nullptr);
        WCHAR text[400] = {};
        GetDlgItemTextW(box, 0xFFFF, text, 400);
        EXPECT_THAT(Narrow(text), testing::StartsWith("Failed to refresh account data. The authorization status"));
        RECT over{}, under{};
        GetWindowRect(box, &over);
        GetWindowRect(sheet.Window(), &under);
        EXPECT_NEAR(over.left + over.right, under.left + under.right, 2);
        EXPECT_FALSE(sheet.IsEnabled(IDC_REFRESH));
        PostMessageW(box, WM_COMMAND, IDOK, 0);
        EXPECT_TRUE(WaitFor([&] { return sheet.IsEnabled(IDC_REFRESH); }));
        EXPECT_TRUE(WideView(sheet.Text(IDC_ACCOUNT)).starts_with(TEXT("Name=Jane Doe")));
        sheet.Close(IDOK);
    });
    EXPECT_EQ(StoredAccount().substr(0, 17), PublishFixture::AuthorizedInitData().substr(0, 17));
}

TEST_F(SettingsSheet, WhileTheServiceIsSlowTheLinkCannotBeClickedAgain)
{
    const HANDLE asked = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE answer = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    int calls = 0;
    AccountRecord account;
    SheetAccount shown{account, {}, {}, [&] {
                           ++calls;
                           SetEvent(asked);
                           EXPECT_EQ(WaitForSingleObject(answer, 30000), WAIT_OBJECT_0);
                           account.FullName = BstrOwner(TEXT("Late"));
                           return S_OK;
                       }};
    {
        SheetDriver driver([&](const OpenSheet &sheet) {
            EXPECT_EQ(sheet.HomepageLink(), nullptr) << "of an account that was never read";
            sheet.SelectPage(PageAbout);
            const HWND link = sheet.Control(IDC_REFRESH);
            sheet.ClickLink(link);
            EXPECT_EQ(WaitForSingleObject(asked, 30000), WAIT_OBJECT_0);
            EXPECT_FALSE(IsWindowEnabled(link));
            sheet.ClickLink(link);
            SetEvent(answer);
            EXPECT_TRUE(WaitFor([&] { return IsWindowEnabled(link) != FALSE; }));
            EXPECT_TRUE(WideView(sheet.Text(IDC_ACCOUNT)).starts_with(TEXT("Name=Late")));
            sheet.Close(IDCANCEL);
        });
        EXPECT_FALSE(ShowSettingsSheet(m_owner, shown).Applied);
    }
    EXPECT_EQ(calls, 1);
    CloseHandle(asked);
    CloseHandle(answer);
}

TEST_F(SettingsSheet, RevocationDropsThePairAndNothingElse)
{
    const HRESULT result = Configure([](const OpenSheet &sheet) {
        sheet.SelectPage(PageAbout);
        sheet.Click(IDC_REVOKE);
        sheet.Close(IDOK);
    });
    EXPECT_EQ(result, S_FALSE);
    EXPECT_EQ(StoredAccount(), InitDataOf(false));
    EXPECT_TRUE(Fixture.Web.CallsOf("RestRequest").empty()) << "the service isn't told";
}

TEST_F(SettingsSheet, ConfirmedDuringARunItPutsTheBarBack)
{
    TurnToFirstPage();
    Fixture.AddItem("p", TEXT("jpg"), JpegBytes);
    Fixture.Web.Answer(OkReply);
    std::vector<std::string> lines[2];
    Fixture.Host->OnItem = [&](size_t) {
        for (const int button : {IDCANCEL, IDOK})
        {
            const size_t before = Fixture.Record.Lines().size();
            EXPECT_EQ(Configure([button](const OpenSheet &sheet) { sheet.Close(button); }), S_OK);
            const auto all = Fixture.Record.Lines();
            lines[button == IDOK].assign(all.begin() + static_cast<ptrdiff_t>(before), all.end());
        }
    };
    EXPECT_EQ(Plugin->Publish(Fixture.Windows.Bar(), Fixture.Windows.StatusText()), S_OK);
    EXPECT_THAT(lines[0], testing::IsEmpty());
    EXPECT_THAT(lines[1], testing::ElementsAre("bar position 0", "bar state 1"));
}

TEST_F(SettingsSheet, TheLinkBesideTheButtonsOpensThePhotosPage)
{
    constexpr WPARAM mouse = 0;
    for (const WPARAM way : {mouse, WPARAM{VK_RETURN}, WPARAM{VK_SPACE}})
    {
        SCOPED_TRACE(way);
        const OpenedAddress opened;
        Configure([&](const OpenSheet &sheet) {
            const HWND link = sheet.HomepageLink();
            ASSERT_NE(link, nullptr);
            EXPECT_EQ(GetWindow(link, GW_HWNDNEXT), sheet.Button(IDOK))
                << "the tab key comes to it just before OK";
            if (way == mouse)
            {
                sheet.ClickLink(link);
            }
            else
            {
                PostMessageW(sheet.Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(link), TRUE);
                EXPECT_TRUE(WaitFor([&] { return sheet.Focus() == link; }));
                sheet.PressKey(way);
            }
            EXPECT_EQ(opened.Wait(), "halvora-test:photos");
            EXPECT_TRUE(WaitFor([&] { return sheet.Focus() == sheet.Button(IDOK); }));
        });
    }
}

TEST_F(SettingsSheet, WaitingLocksTheButtonsUntilItStops)
{
    Configure([](const OpenSheet &sheet) {
        ASSERT_NE(sheet.Animation(), nullptr);
        SendMessageW(sheet.Window(), CFlickrProperties::StartWaiting, 0, 0);
        EXPECT_FALSE(IsWindowEnabled(sheet.Button(IDOK)));
        EXPECT_FALSE(IsWindowEnabled(sheet.Button(IDCANCEL)));
        SendMessageW(sheet.Window(), CFlickrProperties::StopWaiting, 0, 0);
        EXPECT_FALSE(IsWindowEnabled(sheet.Button(IDOK)));
        EXPECT_TRUE(IsWindowEnabled(sheet.Button(IDCANCEL)));
        sheet.Close(IDCANCEL);
    });
}
