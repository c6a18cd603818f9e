// Configure as a user sees it: through the dialogs on the screen.
#include "com/BstrOwner.h"
#include "plugin/FlickrPublisher.h"
#include "tests/doubles/FakeXmlHttp.h"
#include "tests/doubles/PublishFixture.h"
#include "tests/ui/DialogDriver_win32.h"

#include <commctrl.h>

namespace
{
// The plug-in with an account that was authorized before; the host has loaded the control library.
class ConfigureDialogs : public testing::Test
{
protected:
    void SetUp() override
    {
        m_controls = LoadLibraryW(TEXT("comctl32"));
        ASSERT_EQ(
            CFlickrPublisher::CreateInstance(nullptr, __uuidof(IHalvoraPublishingPlugin), m_plugin.PutVoid()),
            S_OK);
        ASSERT_EQ(m_plugin->Initialize(m_fixture.Host.Get(), 0, m_fixture.Stream.Get(), 0), S_OK);
    }
    void TearDown() override
    {
        m_plugin.Reset();
        FreeLibrary(m_controls);
        EXPECT_TRUE(AnotherThreadCanHook());
    }

    HRESULT Configure(const WCHAR *verb)
    {
        WideText text(verb);
        WideText parameters;
        return m_plugin->Configure(m_owner.Handle(), text.data(), parameters.data());
    }

    // The token pair in the data that the host stores.
    std::string StoredAccount()
    {
        EXPECT_EQ(m_plugin->Terminate(), S_OK);
        std::string ascii;
        for (const char byte : m_fixture.Stream->Content)
        {
            if (byte >= 0x20)
            {
                ascii += byte;
            }
        }
        return ascii;
    }

    static std::function<void(HWND)> Pressing(int button)
    {
        return [button](HWND dialog) { PostMessageW(dialog, TDM_CLICK_BUTTON, static_cast<WPARAM>(button), 0); };
    }

    HMODULE m_controls = nullptr;
    OwnerWindow m_owner;
    PublishFixture m_fixture;
    FakeXmlHttp m_http{m_fixture.Record};
    ComPtr<IHalvoraPublishingPlugin> m_plugin;
};
} // namespace

TEST_F(ConfigureDialogs, AVerbCountsInWhateverCaseAndARefusalChangesNothing)
{
    const DialogDriver driver(TEXT("Authorize Halvora Professional"), Pressing(IDCANCEL));
    EXPECT_EQ(Configure(TEXT("AUTHORIZE")), S_FALSE);
    EXPECT_EQ(m_plugin->CanPublish(nullptr, FALSE), S_OK);
    EXPECT_TRUE(m_fixture.Web.CallsOf("GetAuthorizationUrl").empty());
}

TEST_F(ConfigureDialogs, AServiceThatIsNotReachedIsToldInTheMiddleOfTheOwner)
{
    m_fixture.Web.FailOperation("GetAuthorizationUrl", E_ACCESSDENIED);
    const DialogDriver consent(TEXT("Authorize Halvora Professional"), Pressing(1));
    const DialogDriver message(TEXT("Authorization Error"), [this](HWND dialog) {
        const WideText texts = TextsOf(dialog);
        EXPECT_NE(texts.find(TEXT("Could not connect to the Flickr authorization server. The error code was "
                                  "0x80070005.")),
                  texts.npos);
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), m_owner.Handle());
        ExpectCentred(PlaceOf(dialog), PlaceOf(m_owner.Handle()));
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(Configure(TEXT("authorize")), E_ACCESSDENIED);
    EXPECT_EQ(m_plugin->CanPublish(nullptr, FALSE), S_OK) << "the earlier pair stays";
}

TEST_F(ConfigureDialogs, AuthorizingFromEndToEndStoresThePair)
{
    // A scheme that no program opens: no browser starts, and the plug-in doesn't notice.
    m_fixture.Web.AuthorizationUrl = TEXT("halvora-test-nothing:?oauth_token=rt");
    m_http.Answer(TEXT("<TRNQVerifierExchange><Verifier>v</Verifier></TRNQVerifierExchange>"));
    m_fixture.Web.Answer(TEXT("<rsp stat='ok'><oauth><user username='jdoe' fullname='Jane Doe'/></oauth></rsp>"));
    m_fixture.Web.Answer(TEXT("<rsp stat='ok'><user url='https://photos/jdoe/'/></rsp>"));
    m_fixture.Web.Answer(TEXT("<rsp stat='ok'><user ispro='1'><filesize maxbytes='1'/></user></rsp>"));
    const ULONGLONG start = GetTickCount64();
    const DialogDriver consent(TEXT("Authorize Halvora Professional"), Pressing(1));
    const DialogDriver completion(TEXT("Authorization Completion"), [start](HWND dialog) {
        EXPECT_GE(GetTickCount64() - start, 3000u) << "the browser has its time to come up";
        Pressing(1)(dialog);
    });
    EXPECT_EQ(Configure(TEXT("authorize")), S_OK);
    const std::string account = StoredAccount();
    for (const char *const text :
         {"access-token", "access-secret", "jdoe", "Jane Doe", "https://photos/jdoe/", "Pro"})
    {
        EXPECT_NE(account.find(text), account.npos) << text << " isn't in " << account;
    }
}
