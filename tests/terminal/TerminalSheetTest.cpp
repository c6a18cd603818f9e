#include "terminal/TerminalSheet.h"

#include "account/AccountRecord.h"
#include "resources/resource.h"
#include "settings/StoredSettings.h"
#include "terminal/TerminalPage.h"
#include "tests/doubles/SettingsKey.h"
#include "tests/terminal/GridScreen.h"

#include <gmock/gmock.h>

namespace
{
using testing::HasSubstr;

MATCHER_P(Shows, text, "")
{
    return arg.find(text) != arg.npos;
}

class TerminalSheetTest : public testing::Test
{
protected:
    SheetOutcome Run()
    {
        SheetAccount shown{account, TEXT("1.0"), TEXT("(c)"), [this] {
                               atRefresh = screen.Picture();
                               account.FullName = BstrOwner(TEXT("Ada"));
                               return refreshResult;
                           }};
        return RunTerminalSheet(screen, nullptr, shown, [](DWORD) {});
    }

    // The sheet remembers its page between openings; each test begins at the first.
    void TearDown() override
    {
        GridScreen other(80, 24);
        other.PlanClickOn(u"Photos");
        other.Plan(Key::Escape);
        SheetAccount shown{account, {}, {}, [] { return E_FAIL; }};
        RunTerminalSheet(other, nullptr, shown, [](DWORD) {});
    }

    SettingsKey key;
    AccountRecord account;
    GridScreen screen{80, 24};
    std::u16string atRefresh;
    HRESULT refreshResult = S_OK;
};

std::vector<UINT> TabOrder(UINT id, const std::vector<UINT> &disabled = {})
{
    GridScreen screen(80, 24);
    TerminalPage page(ReadPageTemplate(id).value(), screen);
    for (const UINT control : disabled)
    {
        page.Enable(control, false);
    }
    std::vector<UINT> order;
    for (bool is = page.FocusFirst(); is; is = page.FocusNext())
    {
        order.push_back(page.Focused());
    }
    std::vector<UINT> back;
    for (bool is = page.FocusLast(); is; is = page.FocusPrevious())
    {
        back.insert(back.begin(), page.Focused());
    }
    EXPECT_EQ(order, back);
    return order;
}
} // namespace

TEST(TerminalPage, TheTabKeyComesToAGroupOnceAndToNothingDisabled)
{
    using testing::ElementsAre;
    EXPECT_THAT(TabOrder(IDD_PHOTOS), ElementsAre(IDC_WRITE_TITLE, IDC_WRITE_DESCRIPTION, IDC_WRITE_TAGS,
                                                  IDC_VISIBLE_TO_ANYONE, IDC_ASYNC_UPLOAD));
    EXPECT_THAT(TabOrder(IDD_OPTIONS), ElementsAre(IDC_SAFETY_SAFE, IDC_CONTENT_PHOTOS, IDC_SEARCH_SHOW));
    EXPECT_THAT(TabOrder(IDD_JPEG, {IDC_MINIMIZE, IDC_OUTPUT_SIZE, IDC_WRITE_XMP}),
                ElementsAre(IDC_MODE_AS_IS, IDC_WRITE_COPYRIGHT, IDC_WRITE_EXIF, IDC_WRITE_GPS, IDC_WRITE_IPTC));
    EXPECT_THAT(TabOrder(IDD_ABOUT), ElementsAre(IDC_ACCOUNT, IDC_REFRESH, IDC_REVOKE));
}

TEST_F(TerminalSheetTest, SavesThePagesThatWereShownAndNoOthers)
{
    key.MarkAll();
    screen.Plan(Key::NextPage);
    screen.Plan(Key::Down, 2); // of the safety level
    screen.Plan(Key::Enter);
    EXPECT_TRUE(Run().Applied);
    EXPECT_EQ(key.Written().find("JPEG"), std::string::npos);
    EXPECT_EQ(key.Written().find("RAW"), std::string::npos);
    EXPECT_THAT(key.Written(), HasSubstr("SafetyLevel=2"));
    EXPECT_THAT(key.Written(), HasSubstr("IsPublic=1"));
}

TEST_F(TerminalSheetTest, CancelledByAnyWayItWritesNothing)
{
    for (const Key end : {Key::Escape, Key::Lost})
    {
        key.MarkAll();
        screen.Plan(U" ");
        screen.Plan(end);
        EXPECT_FALSE(Run().Applied);
        EXPECT_EQ(key.Written(), "");
    }
    screen.PlanClickOn(u"[ Cancel ]");
    EXPECT_FALSE(Run().Applied);
    EXPECT_EQ(key.Written(), "");
}

TEST_F(TerminalSheetTest, OpensWhereItWasClosed)
{
    screen.Plan(Key::PreviousPage);
    screen.Plan(Key::Escape);
    Run();
    screen.Pictures.clear();
    Run();
    EXPECT_THAT(screen.Pictures.front(), Shows(u"[About]"));
}

TEST_F(TerminalSheetTest, RulesFollowTheModeAndTypedTextReplacesTheSize)
{
    screen.PlanClickOn(u"JPEG Settings");
    screen.Plan(Key::Tab);
    screen.Plan(Key::Tab, 7);
    screen.Plan(U"800");
    screen.Plan(Key::Enter);
    Run();
    EXPECT_THAT(key.Written(), HasSubstr("JPEGLongDimension=800 px"));

    // Only the mode can be reached when files are uploaded as they are.
    screen.Plan(Key::Up, 2);
    screen.Plan(Key::Tab);
    screen.Plan(Key::Enter);
    Run();
    EXPECT_THAT(key.Written(), HasSubstr("JPEGMode=0"));
    EXPECT_THAT(screen.Focused, Shows(u"OK"));
}

TEST_F(TerminalSheetTest, TheListOffersSizesAndGivesWayToEscape)
{
    screen.PlanClickOn(u"RAW/TIFF");
    screen.Plan(Key::Tab, 7);
    screen.Plan(Key::Down);
    screen.Plan(Key::Down, 3);
    screen.Plan(Key::Escape);
    screen.Plan(Key::OpenList);
    screen.Plan(Key::Down, 2);
    screen.Plan(Key::Enter);
    screen.Plan(Key::Enter);
    EXPECT_TRUE(Run().Applied);
    EXPECT_THAT(key.Written(), HasSubstr("RAWLongDimension=320 px"));
}

TEST_F(TerminalSheetTest, RefreshingShowsThatItWaitsAndForgetsImpatientKeys)
{
    screen.PlanClickOn(u"About");
    screen.PlanClickOn(u"Refresh account data");
    screen.PlanClickOn(u"Revoke");
    screen.PlanClickOn(u"[   OK   ]");
    const SheetOutcome outcome = Run();
    EXPECT_THAT(atRefresh, Shows(u"Please wait..."));
    EXPECT_EQ(atRefresh.find(u"Name="), atRefresh.npos);
    EXPECT_EQ(screen.Discards, 1);
    EXPECT_THAT(screen.Pictures.back(), Shows(u"Name=Ada, "));
    EXPECT_TRUE(outcome.Applied && outcome.RevokeRequested);
}

TEST_F(TerminalSheetTest, TheLinkIsThereOnceThePageIsKnown)
{
    Run();
    EXPECT_EQ(screen.Pictures.back().find(u"Homepage"), std::u16string::npos);
    account.PhotosUrl = BstrOwner(TEXT("https://www.flickr.com/photos/ada/"));
    Run();
    EXPECT_THAT(screen.Pictures.back(), Shows(u"Go to your Flickr Homepage"));
}

TEST_F(TerminalSheetTest, SmallTerminalsScrollToTheFocusAndKeepTabsAndButtons)
{
    account.PhotosUrl = BstrOwner(TEXT("https://www.flickr.com/photos/ada/"));
    for (const auto &[columns, rows] : {std::pair(60, 15), std::pair(40, 12), std::pair(24, 6), std::pair(1, 1)})
    {
        screen = GridScreen(columns, rows);
        for (int page = 0; page < 5; ++page)
        {
            screen.Plan(Key::Tab, 12);
            screen.Plan(Key::PageDown, 3);
            screen.Plan(Key::NextPage);
        }
        Run();
        for (const std::u16string &picture : screen.Pictures)
        {
            if (columns >= 40)
            {
                EXPECT_THAT(picture, Shows(u"[ Cancel ]"));
            }
        }
    }
    screen = GridScreen(40, 12);
    screen.PlanClickOn(u"Photos");
    screen.Plan(Key::Tab, 5);
    Run();
    EXPECT_THAT(screen.Focused, Shows(u"Use Flickr asynchronous"));
}
