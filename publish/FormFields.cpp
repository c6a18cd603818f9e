#include "publish/FormFields.h"

#include "com/BstrOwner.h"
#include "com/Hresult.h"
#include "core/TextPieces.h"
#include "settings/SettingsStore.h"

namespace
{
// The value borrows the string: whoever takes it makes a copy.
VARIANT TextValue(const BstrOwner &text) noexcept
{
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = text.Get();
    return value;
}

VARIANT NumberValue(VARTYPE type, UINT32 number) noexcept
{
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = type;
    V_UI4(&value) = number;
    return value;
}

// A number that every form has.
struct NumberField
{
    const WCHAR *name;
    const WCHAR *setting;
    UINT32 offset; // 1 where the service counts from 1 and the setting from 0
};
constexpr NumberField NumberFields[] = {
    {TEXT("is_public"), TEXT("IsPublic"), 0},       {TEXT("is_friend"), TEXT("IsFriend"), 0},
    {TEXT("is_family"), TEXT("IsFamily"), 0},       {TEXT("safety_level"), TEXT("SafetyLevel"), 1},
    {TEXT("content_type"), TEXT("ContentType"), 1}, {TEXT("hidden"), TEXT("SearchVisibility"), 1},
};

class FormFiller
{
public:
    FormFiller(IRequestParameters *parameters, IMultipartFormData *form) noexcept
        : m_parameters(parameters), m_form(form)
    {
    }

    void AddSwitch(const WCHAR *name, const WCHAR *setting)
    {
        if (m_settings.Number(setting) != 0)
        {
            ThrowIfFailed(m_parameters->Add(name, NumberValue(VT_I4, 1)));
            ThrowIfFailed(m_form->AddTextField(name, TEXT("1")));
        }
    }

    void AddText(const WCHAR *name, const WCHAR *setting, const BstrOwner &text)
    {
        if (m_settings.Number(setting) != 0 && !text.IsEmpty())
        {
            ThrowIfFailed(m_parameters->Add(name, TextValue(text)));
            ThrowIfFailed(m_form->AddTextField(name, text.Get()));
        }
    }

    void AddNumber(const NumberField &field)
    {
        const UINT32 number = m_settings.Number(field.setting) + field.offset;
        ThrowIfFailed(m_parameters->Add(field.name, NumberValue(VT_UI4, number)));
        ThrowIfFailed(m_form->AddNumberField(field.name, number));
    }

private:
    SettingsReader m_settings;
    IRequestParameters *m_parameters;
    IMultipartFormData *m_form;
};
} // namespace

WideText QuotedTagList(WideView tags)
{
    WideText list;
    for (const WideView tag : SplitText(tags, TEXT(';')))
    {
        if (!list.empty())
        {
            list += TEXT(' ');
        }
        list += TEXT('"');
        list += StripWhiteSpace(tag);
        list += TEXT('"');
    }
    return list;
}

void AddFormFields(const ItemTexts &texts, IRequestParameters *parameters, IMultipartFormData *form)
{
    FormFiller filler(parameters, form);
    filler.AddSwitch(TEXT("async"), TEXT("AsyncUpload"));
    filler.AddText(TEXT("title"), TEXT("WriteTitle"), texts.Title);
    filler.AddText(TEXT("description"), TEXT("WriteDescription"), texts.Description);
    filler.AddText(TEXT("tags"), TEXT("WriteTags"), BstrOwner(QuotedTagList(texts.Tags.View())));
    for (const NumberField &field : NumberFields)
    {
        filler.AddNumber(field);
    }
}
