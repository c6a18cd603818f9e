#include "settings/PageTemplate.h"

#include "core/TextPieces.h"
#include "core/ThisModule.h"

#include <commctrl.h>

#include <cstring>
#include <stdexcept>

namespace
{
constexpr WORD OrdinalFollows = 0xFFFF;

// The numbers by which a template names predefined window classes.
enum ClassOrdinal : WORD
{
    ClassButton = 0x80,
    ClassEdit = 0x81,
    ClassStatic = 0x82,
    ClassComboBox = 0x85
};

// Reads the bytes in order; throws std::out_of_range past their end.
class TemplateReader
{
public:
    TemplateReader(const BYTE *bytes, size_t size) : m_bytes(bytes), m_size(size) {}

    template <class T>
    T Take()
    {
        T value;
        if (m_size - m_at < sizeof(value))
        {
            throw std::out_of_range("template");
        }
        std::memcpy(&value, m_bytes + m_at, sizeof(value));
        m_at += sizeof(value);
        return value;
    }

    void Skip(size_t count)
    {
        for (; count != 0; --count)
        {
            Take<BYTE>();
        }
    }

    void Align() { Skip((4 - m_at % 4) % 4); }

    WideText TakeText()
    {
        WideText text;
        while (const WORD unit = Take<WORD>())
        {
            text.push_back(static_cast<WCHAR>(unit));
        }
        return text;
    }

    // Reads a name, which is a text or a number; for a number the text is empty, for a text ordinal is 0.
    WideText TakeName(WORD &ordinal)
    {
        const size_t start = m_at;
        if (Take<WORD>() == OrdinalFollows)
        {
            ordinal = Take<WORD>();
            return {};
        }
        m_at = start;
        ordinal = 0;
        return TakeText();
    }

    TemplateRectangle TakePlace()
    {
        TemplateRectangle place;
        place.Left = Take<INT16>();
        place.Top = Take<INT16>();
        place.Width = Take<INT16>();
        place.Height = Take<INT16>();
        return place;
    }

private:
    const BYTE *m_bytes;
    size_t m_size;
    size_t m_at = 0;
};

// A resource compiler may write a predefined class by its name instead of its number.
WORD OrdinalOf(const WideText &className)
{
    static constexpr struct
    {
        const WCHAR *Name;
        WORD Ordinal;
    } classes[] = {
        {WC_BUTTON, ClassButton}, {WC_EDIT, ClassEdit}, {WC_STATIC, ClassStatic}, {WC_COMBOBOX, ClassComboBox}};
    for (const auto &[name, ordinal] : classes)
    {
        if (EqualsIgnoringCase(className, name))
        {
            return ordinal;
        }
    }
    return 0;
}

std::optional<ControlKind> KindOf(WORD ordinal, const WideText &name, DWORD style)
{
    switch (ordinal != 0 ? ordinal : OrdinalOf(name))
    {
    case ClassButton:
        switch (style & BS_TYPEMASK)
        {
        case BS_AUTOCHECKBOX:
            return ControlKind::CheckBox;
        case BS_AUTORADIOBUTTON:
            return ControlKind::RadioButton;
        default:
            return std::nullopt;
        }
    case ClassEdit:
        return ControlKind::Edit;
    case ClassStatic:
        return (style & SS_TYPEMASK) == SS_ETCHEDHORZ ? ControlKind::Rule : ControlKind::Label;
    case ClassComboBox:
        return ControlKind::ComboBox;
    default:
        return EqualsIgnoringCase(name, WC_LINK) ? std::optional(ControlKind::Link) : std::nullopt;
    }
}

std::optional<TemplateControl> TakeControl(TemplateReader &reader)
{
    reader.Align();
    TemplateControl control{};
    reader.Take<DWORD>(); // help identifier
    reader.Take<DWORD>(); // extended style
    const auto style = reader.Take<DWORD>();
    control.Place = reader.TakePlace();
    control.Id = reader.Take<DWORD>() & TemplateControl::NoId;
    control.OpensGroup = (style & WS_GROUP) != 0;
    control.TakesFocus = (style & WS_TABSTOP) != 0;
    WORD classOrdinal, textOrdinal;
    const WideText className = reader.TakeName(classOrdinal);
    control.Text = reader.TakeName(textOrdinal);
    reader.Skip(reader.Take<WORD>());
    const auto kind = KindOf(classOrdinal, className, style);
    if (!kind)
    {
        return std::nullopt;
    }
    control.Kind = *kind;
    return control;
}

std::optional<PageTemplate> TakeTemplate(TemplateReader reader)
{
    const auto version = reader.Take<WORD>();
    if (version != 1 || reader.Take<WORD>() != 0xFFFF)
    {
        return std::nullopt;
    }
    reader.Take<DWORD>(); // help identifier
    reader.Take<DWORD>(); // extended style
    PageTemplate page{};
    page.Style = reader.Take<DWORD>();
    const auto count = reader.Take<WORD>();
    const TemplateRectangle place = reader.TakePlace();
    page.Width = place.Width;
    page.Height = place.Height;
    WORD ordinal;
    reader.TakeName(ordinal); // menu
    reader.TakeName(ordinal); // window class
    page.Title = reader.TakeText();
    if (page.Style & DS_SETFONT)
    {
        page.FontPoints = reader.Take<WORD>();
        reader.Take<WORD>(); // weight
        reader.Take<BYTE>(); // italic
        reader.Take<BYTE>(); // character set
        page.Font = reader.TakeText();
    }
    for (WORD i = 0; i < count; ++i)
    {
        auto control = TakeControl(reader);
        if (!control)
        {
            return std::nullopt;
        }
        page.Controls.push_back(std::move(*control));
    }
    return page;
}
} // namespace

std::optional<PageTemplate> ParsePageTemplate(const BYTE *bytes, size_t size)
{
    try
    {
        return TakeTemplate(TemplateReader(bytes, size));
    }
    catch (const std::out_of_range &)
    {
        return std::nullopt;
    }
}

std::optional<PageTemplate> ReadPageTemplate(UINT templateId)
{
    const HMODULE module = ThisModule();
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(templateId), RT_DIALOG);
    const HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
    const void *bytes = loaded ? LockResource(loaded) : nullptr;
    if (bytes == nullptr)
    {
        return std::nullopt;
    }
    return ParsePageTemplate(static_cast<const BYTE *>(bytes), SizeofResource(module, found));
}
