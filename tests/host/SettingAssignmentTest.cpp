#include "host/SettingAssignment.h"
#include "host/SettingsKey_posix.h"

#include "host/InstalledModules_posix.h"
#include "host/PluginSettings.h"

#include <gmock/gmock.h>

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
std::string FaultOf(std::string_view text)
{
    const auto parsed = ParseSettingAssignment(text);
    const auto *fault = std::get_if<std::string>(&parsed);
    return fault != nullptr ? *fault : "(taken)";
}

SettingAssignment Taken(std::string_view text)
{
    const auto parsed = ParseSettingAssignment(text);
    const auto *taken = std::get_if<SettingAssignment>(&parsed);
    EXPECT_NE(taken, nullptr) << FaultOf(text);
    return taken != nullptr ? *taken : SettingAssignment();
}
} // namespace

TEST(SettingAssignment, TakesWhatTheTableAllows)
{
    EXPECT_EQ(std::get<UINT32>(Taken("JPEGMode=0").value), 0u);
    EXPECT_EQ(std::get<UINT32>(Taken("jpegmode=2").value), 2u);
    EXPECT_EQ(std::get<UINT32>(Taken("WriteTags=off").value), 0u);
    EXPECT_EQ(std::get<UINT32>(Taken("IsPublic=Yes").value), 1u);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(Taken("IsPublic=").value));
    EXPECT_EQ(WideView(Taken("safetylevel=1").setting->Name), u"SafetyLevel");
    EXPECT_EQ(std::get<UINT32>(Taken("IsPublic=false").value), 0u);
    EXPECT_EQ(std::get<UINT32>(Taken("SafetyLevel=Restricted").value), 2u);
    EXPECT_EQ(std::get<UINT32>(Taken("JPEGMode=processed").value), 2u);
    EXPECT_TRUE(std::holds_alternative<SettingQuestion>(Taken("JPEGMode").value));
}

TEST(SettingAssignment, StoresSizesInThePluginsForm)
{
    static constexpr std::pair<const char *, WideView> cases[] = {
        {"original", u"Original"},   {" Original ", u"Original"},     {"900", u"900 px"},
        {"1024pixels", u"1,024 px"}, {"1,024 px", u"1,024 px"},       {"1,00,000", u"100,000 px"},
        {"800.0", u"800 px"},        {"8\"", u"8\" print"},           {"8.25 Inches", u"8.2\" print"},
        {"20cm", u"20 cm print"},    {"20 cm print", u"20 cm print"},
    };
    for (const auto &[typed, stored] : cases)
    {
        EXPECT_EQ(std::get<WideText>(Taken("JPEGLongDimension=" + std::string(typed)).value), stored) << typed;
    }
}

TEST(SettingAssignment, SaysWhatIsWrongAndWhatWouldBeRight)
{
    EXPECT_THAT(FaultOf("SafetyLevel=saf"), HasSubstr("0 safe, 1 moderate"));
    EXPECT_THAT(FaultOf("Nothing=1"), HasSubstr("no setting \"Nothing\""));
    for (const char *text :
         {"JPEGMode=3", "JPEGMode=-1", "JPEGMode=1x", "JPEGMode=on", "JPEGMode=4294967296", "JPEGMode= 1"})
    {
        EXPECT_THAT(FaultOf(text), HasSubstr("from 0 to 2")) << text;
    }
    static constexpr std::pair<const char *, const char *> sizes[] = {
        {"huge", "takes Original"},
        {"9999999999999999999999999", "too large"},
        {"0", "too small"},
        {"0.04in", "too small"},
        {"15 centimetres", "\"centimetres\" would not count"},
        {"1e3", "\"e3\" would not count"},
        {"1024x768", "\"x768\" would not count"},
        {"800.9", "no parts of pixels"},
        {"1,5cm", "\",\" separates thousands"},
    };
    for (const auto &[typed, fault] : sizes)
    {
        EXPECT_THAT(FaultOf("JPEGLongDimension=" + std::string(typed)), HasSubstr(fault)) << typed;
    }
}

TEST(SettingsKey, ListsWhatWasStoredAndWhatIsDefault)
{
    ASSERT_EQ(MakeSettingsKey(), S_OK);
    EXPECT_THAT(ListSettings(), HasSubstr("JPEGMode=2 (default)"));
    ASSERT_EQ(StoreSettings({Taken("JPEGMode=1"), Taken("JPEGLongDimension=900")}), S_OK);
    EXPECT_THAT(ListSettings(), HasSubstr("JPEGMode=1 "));
    EXPECT_THAT(ListSettings(), HasSubstr("JPEGLongDimension=900 px "));
    ASSERT_EQ(StoreSettings({Taken("JPEGMode="), Taken("JPEGLongDimension="), Taken("RAWMinimize=")}), S_OK);
    EXPECT_THAT(ListSettings(), HasSubstr("JPEGMode=2 (default)"));
    EXPECT_THAT(ListSettings(), HasSubstr("JPEGLongDimension=Original (default)"));
    EXPECT_EQ(DescribeChanges({Taken("JPEGLongDimension=9in"), Taken("JPEGMode=")}),
              "JPEGLongDimension=Original (default)\nJPEGMode=2 (default)\n")
        << "what holds, not what was asked for";
}

TEST(SettingsKey, ListsWhatHoldsAndMarksWhatIsStoredAndNotTaken)
{
    ASSERT_EQ(MakeSettingsKey(), S_OK);
    const auto store = [](const WCHAR *name, WideView text, DWORD number) {
        SettingAssignment change{FindStoredSetting(name), number};
        if (!text.empty())
        {
            change.value = WideText(text);
        }
        ASSERT_EQ(StoreSettings({change}), S_OK);
    };
    store(TEXT("JPEGMode"), {}, 7);
    store(TEXT("JPEGMinimize"), {}, 5);
    store(TEXT("SafetyLevel"), {}, 9);
    store(TEXT("JPEGLongDimension"), TEXT("huge"), 0);
    store(TEXT("RAWLongDimension"), TEXT("1.024 px"), 0); // as it is written in German
    EXPECT_THAT(ListSettings(), HasSubstr("JPEGMode=2 (stored: 7) "));
    EXPECT_THAT(ListSettings(), HasSubstr("JPEGMinimize=1 (stored: 5) "));
    EXPECT_THAT(ListSettings(), HasSubstr("SafetyLevel=9 ")) << "is sent as it is";
    EXPECT_THAT(ListSettings(), HasSubstr("JPEGLongDimension=Original (stored: \"huge\") "));
    EXPECT_THAT(ListSettings(), HasSubstr("RAWLongDimension=1 px (stored: \"1.024 px\") "));
    EXPECT_THAT(SizeWarnings(), ElementsAre(AllOf(HasSubstr("\"huge\""), HasSubstr("the full size")),
                                            AllOf(HasSubstr(": 1 pixel."), HasSubstr("1024 pixels"))));
    ASSERT_TRUE(TooSmallSize());
    EXPECT_THAT(*TooSmallSize(), HasSubstr("RAWLongDimension"));

    // A size may be written without separators and blanks.
    store(TEXT("JPEGLongDimension"), TEXT("1,024 px"), 0);
    store(TEXT("RAWLongDimension"), TEXT("64px"), 0);
    EXPECT_THAT(SizeWarnings(), IsEmpty());
    EXPECT_FALSE(TooSmallSize());
    store(TEXT("JPEGLongDimension"), TEXT("63 px"), 0);
    EXPECT_TRUE(TooSmallSize());
    store(TEXT("JPEGMode"), {}, 1);
    EXPECT_FALSE(TooSmallSize()) << "with intact pixels no size counts";
    ASSERT_EQ(StoreSettings({Taken("JPEGMode="), Taken("JPEGMinimize="), Taken("SafetyLevel="),
                             Taken("JPEGLongDimension="), Taken("RAWLongDimension=")}),
              S_OK);
}
