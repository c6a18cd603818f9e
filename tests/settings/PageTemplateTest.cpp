#include "settings/PageTemplate.h"

#include "core/ThisModule.h"
#include "resources/resource.h"
#include "tests/doubles/CallRecord.h"

#include <gmock/gmock.h>

namespace
{
constexpr UINT Pages[] = {IDD_PHOTOS, IDD_OPTIONS, IDD_JPEG, IDD_RAW, IDD_ABOUT};

// One letter for each kind; radio buttons that open a group in upper case.
std::string Outline(const PageTemplate &page)
{
    std::string outline;
    for (const TemplateControl &control : page.Controls)
    {
        static constexpr const char *Kinds[] = {"label", "rule", "check", "radio", "combo", "edit", "link"};
        outline += (outline.empty() ? "" : " ") + std::string(Kinds[static_cast<int>(control.Kind)]);
        if (control.Kind == ControlKind::RadioButton && control.OpensGroup)
        {
            outline += "+";
        }
        if (control.Id != TemplateControl::NoId)
        {
            outline += std::to_string(control.Id);
        }
    }
    return outline;
}

bool Overlap(const TemplateRectangle &a, const TemplateRectangle &b)
{
    return a.Left < b.Left + b.Width && b.Left < a.Left + a.Width && a.Top < b.Top + b.Height &&
           b.Top < a.Top + a.Height;
}

std::vector<BYTE> BytesOf(UINT id)
{
    const HMODULE module = ThisModule();
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), RT_DIALOG);
    const auto *bytes = static_cast<const BYTE *>(LockResource(LoadResource(module, found)));
    return std::vector<BYTE>(bytes, bytes + SizeofResource(module, found));
}
} // namespace

TEST(PageTemplates, HaveTheirControlsInTheOrderOfTheTabKey)
{
    const struct
    {
        UINT id;
        const char *title;
        INT16 height;
        const char *outline;
    } cases[] = {
        {IDD_PHOTOS, "Photos", 202,
         "label check237 check238 check239 label radio+243 radio246 radio245 radio244 radio240 label check257"},
        {IDD_OPTIONS, "Options", 202,
         "label radio+250 radio251 radio252 label radio+253 radio254 radio255 label radio+256 radio257"},
        {IDD_JPEG, "JPEG Settings", 202,
         "radio+215 radio224 radio216 check217 rule check228 check218 check219 check220 check221 label223 "
         "combo222 "
         "label225"},
        {IDD_RAW, "RAW/TIFF Settings", 202,
         "label check217 check228 check218 check219 check220 check221 label223 combo222 label225 label"},
        {IDD_ABOUT, "About", 188, "label208 label209 label label edit205 link210 check237"},
    };
    for (const auto &[id, title, height, outline] : cases)
    {
        SCOPED_TRACE(title);
        const auto page = ReadPageTemplate(id);
        ASSERT_TRUE(page);
        EXPECT_EQ(Narrow(page->Title), title);
        EXPECT_EQ(Narrow(page->Font), "MS Shell Dlg");
        EXPECT_EQ(page->FontPoints, 8);
        EXPECT_EQ(page->Width, 264);
        EXPECT_EQ(page->Height, height);
        EXPECT_EQ(page->Style & (WS_CHILD | WS_CAPTION | WS_VISIBLE), WS_CHILD | WS_CAPTION);
        EXPECT_EQ(Outline(*page), outline);
    }
}

TEST(PageTemplates, ControlsLieWithinTheirPageAndApart)
{
    for (const UINT id : Pages)
    {
        const auto page = ReadPageTemplate(id);
        ASSERT_TRUE(page);
        for (auto control = page->Controls.begin(); control != page->Controls.end(); ++control)
        {
            SCOPED_TRACE(Narrow(control->Text));
            // The height of a combo box in a template is that with its list open.
            TemplateRectangle place = control->Place;
            place.Height = control->Kind == ControlKind::ComboBox ? 14 : place.Height;
            EXPECT_GE(place.Left, 7);
            EXPECT_GE(place.Top, 7);
            EXPECT_LE(place.Left + place.Width, page->Width - 7);
            EXPECT_LE(place.Top + place.Height, page->Height - 7);
            for (auto other = control + 1; other != page->Controls.end(); ++other)
            {
                EXPECT_FALSE(Overlap(place, other->Place)) << Narrow(other->Text);
                EXPECT_LT(place.Top, other->Place.Top) << "tab order runs down the page";
            }
        }
    }
}

TEST(PageTemplates, TheTabKeyComesToEachControlAndOnceToEachGroup)
{
    for (const UINT id : Pages)
    {
        const auto page = ReadPageTemplate(id);
        ASSERT_TRUE(page);
        for (const TemplateControl &control : page->Controls)
        {
            const bool isWords = control.Kind == ControlKind::Label || control.Kind == ControlKind::Rule;
            const bool isFurtherRadio = control.Kind == ControlKind::RadioButton && !control.OpensGroup;
            EXPECT_EQ(control.TakesFocus, !isWords && !isFurtherRadio) << Narrow(control.Text);
        }
    }
}

TEST(PageTemplates, AreReadInWholeOrNotAtAll)
{
    EXPECT_FALSE(ReadPageTemplate(1)) << "there is none of that number";
    std::vector<BYTE> bytes = BytesOf(IDD_PHOTOS);
    ASSERT_TRUE(ParsePageTemplate(bytes.data(), bytes.size()));
    // The last word of the last control counts the bytes behind it.
    for (size_t size = 0; size + 2 <= bytes.size() - 2; ++size)
    {
        const std::vector<BYTE> cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_FALSE(ParsePageTemplate(cut.data(), cut.size())) << size;
    }
    bytes[2] = 0;
    EXPECT_FALSE(ParsePageTemplate(bytes.data(), bytes.size())) << "not of the extended kind";
}
