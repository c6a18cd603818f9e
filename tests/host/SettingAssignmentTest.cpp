#include "host/SettingAssignment.h"
#include "host/SettingsKey_posix.h"

#include "host/InstalledModules_posix.h"
#include "host/SettingsKeyMaking.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

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
    EXPECT_EQ(std::get<WideText>(Taken("JPEGLongDimension=original").value), u"Original");
    EXPECT_THAT(FaultOf("JPEGLongDimension=900"), "(taken)");
}

TEST(SettingAssignment, SaysWhatIsWrongAndWhatWouldBeRight)
{
    EXPECT_THAT(FaultOf("JPEGMode"), HasSubstr("NAME=VALUE"));
    EXPECT_THAT(FaultOf("Nothing=1"), HasSubstr("no setting \"Nothing\""));
    for (const char *text :
         {"JPEGMode=3", "JPEGMode=-1", "JPEGMode=1x", "JPEGMode=on", "JPEGMode=4294967296", "JPEGMode= 1"})
    {
        EXPECT_THAT(FaultOf(text), HasSubstr("from 0 to 2")) << text;
    }
    EXPECT_THAT(FaultOf("JPEGLongDimension=huge"), HasSubstr("Original"));
    EXPECT_THAT(FaultOf("JPEGLongDimension=" + std::string(40, '1')), HasSubstr("Original"));
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
}
