#include "settings/AboutPage.h"

#include "account/AccountRecord.h"
#include "resources/resource.h"
#include "settings/SettingsSheet.h"
#include "tests/settings/FakePageControls.h"

#include <gmock/gmock.h>

#include <new>

namespace
{
// Writes into the controls' record, so that the order of calls to both can be asserted.
class FakeRefreshDisplay final : public IRefreshDisplay
{
public:
    explicit FakeRefreshDisplay(CallRecord &record) : m_record(record) {}

    void ShowPending() override { m_record.Add("pending shown"); }
    void ShowWaiting(bool isWaiting) override { m_record.Add(isWaiting ? "wait cursor" : "arrow cursor"); }
    void ShowError(const WideText &text, const WideText &caption) override
    {
        m_record.Add("error " + Narrow(caption) + ": " + Narrow(text));
    }

private:
    CallRecord &m_record;
};

struct AboutPageFixture
{
    AccountRecord Account;
    HRESULT Result = S_OK;
    SheetAccount Sheet{Account, TEXT("1.96 (Build 401)"), TEXT("Copyright"), [this] { return Refresh(); }};
    FakePageControls Controls{IDD_ABOUT};
    AboutPage Page{Sheet, [this](DWORD length) { Controls.Record.Add("pause " + std::to_string(length)); }};
    FakeRefreshDisplay Display{Controls.Record};

    HRESULT Refresh()
    {
        Controls.Record.Add("refresh");
        Account.FullName = BstrOwner(TEXT("Anew"));
        if (Result == E_OUTOFMEMORY)
        {
            throw std::bad_alloc();
        }
        return Result;
    }
};
} // namespace

TEST(AboutPage, TellsVersionAndCopyright)
{
    AboutPageFixture fixture;
    fixture.Page.Load(fixture.Controls);
    EXPECT_EQ(fixture.Controls.Text(IDC_VERSION),
              TEXT("Halvora Publish to Flickr Plugin Version 1.96 (Build 401)"));
    EXPECT_EQ(fixture.Controls.Text(IDC_COPYRIGHT), TEXT("Copyright"));
}

TEST(AboutPage, ShowsTheAccountAsItStands)
{
    const struct
    {
        const WCHAR *fullName;
        const WCHAR *type;
        INT64 maxFileSize;
        INT64 uploadLeft;
        const char *text;
    } cases[] = {
        {TEXT("Ann Other"), TEXT("Pro"), 209715200, UnlimitedUpload,
         "Name=Ann Other, Type=Pro, MaxFileSize=200 MB, UploadLeftThisMonth=Unlimited, URL=http://photos/"},
        {nullptr, TEXT("Basic"), 0, 0,
         "Name=, Type=Basic, MaxFileSize=0 bytes, UploadLeftThisMonth=0 bytes, URL=http://photos/"},
    };
    for (const auto &[fullName, type, maxFileSize, uploadLeft, text] : cases)
    {
        AboutPageFixture fixture;
        fixture.Account.FullName = fullName ? BstrOwner(fullName) : BstrOwner();
        fixture.Account.AccountType = BstrOwner(type);
        fixture.Account.PhotosUrl = BstrOwner(TEXT("http://photos/"));
        fixture.Account.MaxFileSize = maxFileSize;
        fixture.Account.UploadLeftThisMonth = uploadLeft;
        fixture.Page.ShowAccountData(fixture.Controls);
        EXPECT_THAT(fixture.Controls.Record.Lines(),
                    testing::ElementsAre(std::string("text 205 ") + text, "caret at end 205"));
    }
}

TEST(AboutPage, ARefreshIsToldWhetherItWorksOrNot)
{
    for (const HRESULT result : {S_OK, S_FALSE, E_FAIL, E_OUTOFMEMORY})
    {
        SCOPED_TRACE(result);
        AboutPageFixture fixture;
        fixture.Result = result;
        fixture.Page.Refresh(fixture.Controls, fixture.Display);
        const auto outcome =
            FAILED(result) ? testing::Matcher<std::string>(testing::StartsWith(
                                 "error Publish to Flickr: Failed to refresh account data. The authorization"))
                           : testing::Matcher<std::string>("pause 500");
        EXPECT_THAT(fixture.Controls.Record.Lines(),
                    testing::ElementsAre("text 205 ", "repaint 205", "focus 205", "enable 210 0", "repaint 210",
                                         "pending shown", "wait cursor", "refresh",
                                         testing::StartsWith("text 205 Name=Anew,"), "caret at end 205", outcome,
                                         "arrow cursor", "enable 210 1"));
    }
}

TEST(AboutPage, AsksForRevocationOnlyWhenItIsSavedWithTheBoxChecked)
{
    AboutPageFixture fixture;
    fixture.Controls.SetCheck(IDC_REVOKE, 1);
    EXPECT_FALSE(fixture.Page.RevokeRequested());
    fixture.Page.Save(fixture.Controls);
    EXPECT_TRUE(fixture.Page.RevokeRequested());
    fixture.Controls.SetCheck(IDC_REVOKE, 0);
    fixture.Page.Save(fixture.Controls);
    EXPECT_FALSE(fixture.Page.RevokeRequested());
}
