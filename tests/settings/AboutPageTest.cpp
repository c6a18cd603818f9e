#include "settings/AboutPage.h"

#include "account/AccountRecord.h"
#include "resources/resource.h"
#include "settings/SettingsSheet.h"
#include "tests/settings/FakePageControls.h"

#include <gmock/gmock.h>

#include <new>

namespace
{
// Writes into the record of the controls, so that the order of both shows.
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

struct AboutWorld
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
    AboutWorld world;
    world.Page.Load(world.Controls);
    EXPECT_EQ(world.Controls.Text(IDC_VERSION), TEXT("Halvora Publish to Flickr Plugin Version 1.96 (Build 401)"));
    EXPECT_EQ(world.Controls.Text(IDC_COPYRIGHT), TEXT("Copyright"));
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
        AboutWorld world;
        world.Account.FullName = fullName ? BstrOwner(fullName) : BstrOwner();
        world.Account.AccountType = BstrOwner(type);
        world.Account.PhotosUrl = BstrOwner(TEXT("http://photos/"));
        world.Account.MaxFileSize = maxFileSize;
        world.Account.UploadLeftThisMonth = uploadLeft;
        world.Page.ShowAccountData(world.Controls);
        EXPECT_THAT(world.Controls.Record.Lines(),
                    testing::ElementsAre(std::string("text 205 ") + text, "caret at end 205"));
    }
}

TEST(AboutPage, ARefreshIsToldWhetherItWorksOrNot)
{
    for (const HRESULT result : {S_OK, S_FALSE, E_FAIL, E_OUTOFMEMORY})
    {
        SCOPED_TRACE(result);
        AboutWorld world;
        world.Result = result;
        world.Page.Refresh(world.Controls, world.Display);
        const auto outcome =
            FAILED(result) ? testing::Matcher<std::string>(testing::StartsWith(
                                 "error Publish to Flickr: Failed to refresh account data. The authorization"))
                           : testing::Matcher<std::string>("pause 500");
        EXPECT_THAT(world.Controls.Record.Lines(),
                    testing::ElementsAre("text 205 ", "repaint 205", "focus 205", "enable 210 0", "repaint 210",
                                         "pending shown", "wait cursor", "refresh",
                                         testing::StartsWith("text 205 Name=Anew,"), "caret at end 205", outcome,
                                         "arrow cursor", "enable 210 1"));
    }
}

TEST(AboutPage, AsksForRevocationOnlyWhenItIsSavedWithTheBoxChecked)
{
    AboutWorld world;
    world.Controls.SetCheck(IDC_REVOKE, 1);
    EXPECT_FALSE(world.Page.RevokeRequested());
    world.Page.Save(world.Controls);
    EXPECT_TRUE(world.Page.RevokeRequested());
    world.Controls.SetCheck(IDC_REVOKE, 0);
    world.Page.Save(world.Controls);
    EXPECT_FALSE(world.Page.RevokeRequested());
}
