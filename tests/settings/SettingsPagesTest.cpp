// The logic of the pages, without windows.
#include "core/NumberFormat.h"
#include "resources/resource.h"
#include "settings/SettingsPages.h"
#include "settings/SettingsStore.h"
#include "tests/doubles/SettingsKey.h"
#include "tests/settings/FakePageControls.h"

#include <gmock/gmock.h>

namespace
{
// A page that was loaded with the settings as they are now.
template <class Page>
struct Shown
{
    Shown() { Logic.Load(Controls); }

    void Save() { Logic.Save(Controls); }

    Page Logic;
    FakePageControls Controls{Logic.Template()};
};

// Digits as the user's locale groups them.
WideText Grouped(const WCHAR *plain)
{
    WideText text = plain;
    LocaleNumberFormat format;
    LoadLocaleFormat(format, true);
    if (text.size() > 3 && format.Grouping == 3)
    {
        text.insert(text.size() - 3, format.ThousandSeparator);
    }
    return text;
}
} // namespace

TEST(PhotosPage, ShowsWhatIsStored)
{
    const struct
    {
        std::vector<std::pair<const WCHAR *, UINT32>> stored;
        std::vector<UINT32> flags; // AsyncUpload, title, description, tags
        UINT32 visibility;
    } cases[] = {
        {{}, {0, 0, 0, 0}, 0},
        {{{TEXT("AsyncUpload"), 7}, {TEXT("WriteDescription"), 1}}, {1, 0, 1, 0}, 0},
        {{{TEXT("WriteTitle"), 1}, {TEXT("WriteTags"), 0xFFFFFFFF}, {TEXT("IsPublic"), 0}}, {0, 1, 0, 1}, 4},
        {{{TEXT("IsPublic"), 9}, {TEXT("IsFriend"), 0}, {TEXT("IsFamily"), 0}}, {0, 0, 0, 0}, 0},
        {{{TEXT("IsPublic"), 0}, {TEXT("IsFriend"), 9}}, {0, 0, 0, 0}, 2},
        {{{TEXT("IsPublic"), 0}, {TEXT("IsFriend"), 9}, {TEXT("IsFamily"), 5}}, {0, 0, 0, 0}, 1},
        {{{TEXT("IsPublic"), 0}, {TEXT("IsFamily"), 2}}, {0, 0, 0, 0}, 3},
    };
    for (const auto &[stored, flags, visibility] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(stored.size()) + " stored, visibility " + std::to_string(visibility));
        SettingsKey key;
        for (const auto &[name, value] : stored)
        {
            key.Set(name, value);
        }
        Shown<PhotosPage> page;
        EXPECT_EQ(page.Controls.Check(IDC_ASYNC_UPLOAD), flags[0]);
        EXPECT_EQ(page.Controls.Check(IDC_WRITE_TITLE), flags[1]);
        EXPECT_EQ(page.Controls.Check(IDC_WRITE_DESCRIPTION), flags[2]);
        EXPECT_EQ(page.Controls.Check(IDC_WRITE_TAGS), flags[3]);
        EXPECT_EQ(page.Controls.Radio(IDC_VISIBLE_TO_ANYONE), visibility);
    }
}

TEST(PhotosPage, SavesItsOwnValuesAndTheChoiceAsThreeNumbers)
{
    const struct
    {
        UINT32 choice;
        const char *written;
    } cases[] = {
        {0, "AsyncUpload=1 WriteTitle=0 WriteDescription=1 WriteTags=0 IsPublic=1 IsFriend=1 IsFamily=1"},
        {1, "AsyncUpload=1 WriteTitle=0 WriteDescription=1 WriteTags=0 IsPublic=0 IsFriend=1 IsFamily=1"},
        {2, "AsyncUpload=1 WriteTitle=0 WriteDescription=1 WriteTags=0 IsPublic=0 IsFriend=1 IsFamily=0"},
        {3, "AsyncUpload=1 WriteTitle=0 WriteDescription=1 WriteTags=0 IsPublic=0 IsFriend=0 IsFamily=1"},
        {4, "AsyncUpload=1 WriteTitle=0 WriteDescription=1 WriteTags=0 IsPublic=0 IsFriend=0 IsFamily=0"},
        {IPageControls::NoRadio, "AsyncUpload=1 WriteTitle=0 WriteDescription=1 WriteTags=0"},
    };
    for (const auto &[choice, written] : cases)
    {
        SettingsKey key;
        Shown<PhotosPage> page;
        key.MarkAll();
        page.Controls.SetCheck(IDC_ASYNC_UPLOAD, 1);
        page.Controls.SetCheck(IDC_WRITE_DESCRIPTION, 1);
        page.Controls.SetRadio(IDC_VISIBLE_TO_ANYONE, choice);
        page.Save();
        EXPECT_EQ(key.Written(), written);
        if (choice != IPageControls::NoRadio)
        {
            EXPECT_EQ(Shown<PhotosPage>().Controls.Radio(IDC_VISIBLE_TO_ANYONE), choice);
        }
    }
}

TEST(OptionsPage, ShowsAndSavesEachGroup)
{
    const struct
    {
        UINT32 stored[3];
        UINT32 shown[3];
    } cases[] = {
        {{0, 0, 0}, {0, 0, 0}},
        {{2, 1, 1}, {2, 1, 1}},
        {{1, 2, 0}, {1, 2, 0}},
        {{3, 5, 2}, {0, 0, 0}},
    };
    for (const auto &[stored, shown] : cases)
    {
        SettingsKey key;
        key.Set(TEXT("SafetyLevel"), stored[0]);
        key.Set(TEXT("ContentType"), stored[1]);
        key.Set(TEXT("SearchVisibility"), stored[2]);
        Shown<OptionsPage> page;
        EXPECT_EQ(page.Controls.Radio(IDC_SAFETY_SAFE), shown[0]);
        EXPECT_EQ(page.Controls.Radio(IDC_CONTENT_PHOTOS), shown[1]);
        EXPECT_EQ(page.Controls.Radio(IDC_SEARCH_SHOW), shown[2]);
        key.MarkAll();
        page.Save();
        EXPECT_EQ(key.Written(), "SafetyLevel=" + std::to_string(shown[0]) + " ContentType=" +
                                     std::to_string(shown[1]) + " SearchVisibility=" + std::to_string(shown[2]));
    }
}

TEST(JpegPage, TheModeRulesWhatIsEnabledAndNothingElse)
{
    const std::set<UINT> metadata = {IDC_WRITE_COPYRIGHT, IDC_WRITE_EXIF, IDC_WRITE_XMP, IDC_WRITE_GPS,
                                     IDC_WRITE_IPTC};
    const std::set<UINT> processing = {IDC_MINIMIZE, IDC_OUTPUT_SIZE_LABEL, IDC_OUTPUT_SIZE, IDC_OUTPUT_SIZE_NOTE};
    std::set<UINT> all = metadata;
    all.insert(processing.begin(), processing.end());
    const struct
    {
        UINT32 mode;
        UINT button;
        std::set<UINT> disabled;
    } cases[] = {{0, IDC_MODE_AS_IS, all}, {1, IDC_MODE_PIXELS_INTACT, processing}, {2, IDC_MODE_PROCESSED, {}}};
    for (const auto &from : cases)
    {
        for (const auto &to : cases)
        {
            SettingsKey key;
            key.Set(TEXT("JPEGMode"), from.mode);
            Shown<JpegPage> page;
            EXPECT_EQ(page.Controls.Radio(IDC_MODE_AS_IS), from.mode);
            EXPECT_EQ(page.Controls.Disabled(), from.disabled);

            page.Controls.SetRadio(IDC_MODE_AS_IS, to.mode);
            page.Logic.Click(page.Controls, IDC_WRITE_XMP);
            EXPECT_EQ(page.Controls.Disabled(), from.disabled) << "no rule follows that click";
            page.Logic.Click(page.Controls, to.button);
            EXPECT_EQ(page.Controls.Disabled(), to.disabled);
        }
    }
}

TEST(JpegPage, DisabledControlsKeepAndSaveWhatTheyShow)
{
    SettingsKey key;
    key.Set(TEXT("JPEGMode"), 7u);
    key.Set(TEXT("JPEGWriteXMP"), 1u);
    key.Set(TEXT("JPEGLongDimension"), TEXT("8in"));
    Shown<JpegPage> page;
    EXPECT_EQ(page.Controls.Radio(IDC_MODE_AS_IS), 2u);
    page.Controls.SetRadio(IDC_MODE_AS_IS, 0);
    page.Logic.Click(page.Controls, IDC_MODE_AS_IS);
    key.MarkAll();
    page.Save();
    EXPECT_EQ(key.Written(), "JPEGMode=0 JPEGMinimize=1 JPEGWriteCopyright=1 JPEGWriteEXIF=1 JPEGWriteXMP=1 "
                             "JPEGWriteGPS=1 JPEGWriteIPTC=0 JPEGLongDimension=8\" print");
}

TEST(ConversionPages, FieldsStartAtTheirDefaultsAndAreNotFolded)
{
    // A box shows an undetermined state as checked, and that is what is saved; anything else is clear.
    const struct
    {
        std::optional<UINT32> stored;
        UINT32 shown;
    } cases[] = {{std::nullopt, 0}, {0, 0}, {1, 1}, {2, 1}, {3, 0}, {0xFFFFFFFF, 0}};
    for (const auto &[stored, shown] : cases)
    {
        SettingsKey key;
        if (stored)
        {
            key.Set(TEXT("RAWWriteIPTC"), *stored);
            key.Set(TEXT("JPEGWriteIPTC"), *stored);
        }
        Shown<RawPage> raw;
        Shown<JpegPage> jpeg;
        EXPECT_EQ(raw.Controls.Check(IDC_WRITE_IPTC), shown);
        EXPECT_EQ(jpeg.Controls.Check(IDC_WRITE_IPTC), shown);
        EXPECT_EQ(raw.Controls.Disabled(), std::set<UINT>());
        key.MarkAll();
        raw.Save();
        EXPECT_EQ(key.Written(), "RAWMinimize=1 RAWWriteCopyright=1 RAWWriteEXIF=1 RAWWriteXMP=0 RAWWriteGPS=1 "
                                 "RAWWriteIPTC=" +
                                     std::to_string(shown) + " RAWLongDimension=Original");
    }
}

TEST(ConversionPages, EachBoxIsStoredUnderItsName)
{
    constexpr std::pair<UINT, const char *> boxes[] = {
        {IDC_MINIMIZE, "Minimize"},    {IDC_WRITE_COPYRIGHT, "WriteCopyright"},
        {IDC_WRITE_EXIF, "WriteEXIF"}, {IDC_WRITE_XMP, "WriteXMP"},
        {IDC_WRITE_GPS, "WriteGPS"},   {IDC_WRITE_IPTC, "WriteIPTC"}};
    for (const auto &[checked, name] : boxes)
    {
        SettingsKey key;
        Shown<RawPage> page;
        for (const auto &box : boxes)
        {
            page.Controls.SetCheck(box.first, box.first == checked);
        }
        key.MarkAll();
        page.Save();
        const std::string written = key.Written();
        EXPECT_EQ(written.find("=1"), written.find(std::string("RAW") + name + "=1") + 3 + strlen(name))
            << written;
        EXPECT_EQ(written.find("=1"), written.rfind("=1")) << written;
    }
}

TEST(ConversionPages, SizesAreShownAndStoredInTheirDisplayForm)
{
    const struct
    {
        const WCHAR *typed;
        WideText stored;
        bool beeps;
    } cases[] = {
        {TEXT("1024"), Grouped(TEXT("1024")) + TEXT(" px"), false},
        {TEXT("20cm"), TEXT("20 cm print"), false},
        {TEXT(""), TEXT("Original"), false},
        {TEXT("very large"), TEXT("Original"), false},
        {TEXT("500 px and thirty-one characters"), TEXT("500 px"), true},
        {TEXT("500 px and thirty-one character"), TEXT("500 px"), false},
        {TEXT("0000000000000000000000000000000000000800"), TEXT("Original"), true},
        {TEXT("0000000000000000000000000000500 px and more"), TEXT("500 px"), true},
    };
    for (const auto &[typed, stored, beeps] : cases)
    {
        SCOPED_TRACE(Narrow(typed));
        SettingsKey key;
        Shown<JpegPage> jpeg;
        Shown<RawPage> raw;
        for (FakePageControls *controls : {&jpeg.Controls, &raw.Controls})
        {
            controls->SetText(IDC_OUTPUT_SIZE, typed);
            controls->Record.Clear();
        }
        jpeg.Save();
        raw.Save();
        EXPECT_EQ(Narrow(SettingsReader().Text(TEXT("JPEGLongDimension"))), Narrow(stored));
        EXPECT_EQ(Narrow(SettingsReader().Text(TEXT("RAWLongDimension"))), Narrow(stored));
        for (FakePageControls *controls : {&jpeg.Controls, &raw.Controls})
        {
            EXPECT_EQ(controls->Record.LinesOf("beep").size(), beeps ? 1u : 0u);
            EXPECT_EQ(controls->Record.LinesOf("focus 222").size(), beeps ? 1u : 0u);
        }
        EXPECT_EQ(Narrow(Shown<RawPage>().Controls.Text(IDC_OUTPUT_SIZE)), Narrow(stored));
    }
}

TEST(ConversionPages, OfferTheUsualSizes)
{
    SettingsKey key;
    std::vector<std::string> sizes = {"Original"};
    for (const WCHAR *size :
         {TEXT("240"), TEXT("320"), TEXT("500"), TEXT("800"), TEXT("1024"), TEXT("1600"), TEXT("2048")})
    {
        sizes.push_back(Narrow(Grouped(size) + TEXT(" px=") + size));
    }
    EXPECT_EQ(Shown<JpegPage>().Controls.List(), sizes);
    EXPECT_EQ(Shown<RawPage>().Controls.List(), sizes);
}

TEST(SettingsPages, WithoutTheKeyShowDefaultsAndSaveNothing)
{
    SettingsKey key;
    key.RemoveKey();
    Shown<PhotosPage> photos;
    Shown<OptionsPage> options;
    Shown<JpegPage> jpeg;
    Shown<RawPage> raw;
    EXPECT_EQ(photos.Controls.Radio(IDC_VISIBLE_TO_ANYONE), 0u);
    EXPECT_EQ(options.Controls.Radio(IDC_SEARCH_SHOW), 0u);
    EXPECT_EQ(jpeg.Controls.Radio(IDC_MODE_AS_IS), 2u);
    for (FakePageControls *controls : {&jpeg.Controls, &raw.Controls})
    {
        EXPECT_EQ(controls->Text(IDC_OUTPUT_SIZE), TEXT("Original"));
        EXPECT_EQ(controls->Check(IDC_WRITE_GPS), 1u);
        EXPECT_EQ(controls->Check(IDC_WRITE_XMP), 0u);
    }
    photos.Save();
    options.Save();
    jpeg.Save();
    raw.Save();
    EXPECT_FALSE(SettingsReader().IsOpen()) << "the key comes into being elsewhere";
}
