// Reads a dialog template of the module, for showing its controls by other means than the platform's dialogs:
// the title, and the kinds, identifiers and texts of the controls in tab order. The format is DLGTEMPLATEEX.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <optional>
#include <vector>

enum class ControlKind
{
    Label,
    Rule, // a horizontal line without text
    CheckBox,
    RadioButton,
    ComboBox, // editable, with a list
    Edit,     // of several lines
    Link      // its text has the link in <a> and </a>
};

// In dialog units: 4 are the width of an average character, 8 its height.
struct TemplateRectangle
{
    INT16 Left;
    INT16 Top;
    INT16 Width;
    INT16 Height;
};

struct TemplateControl
{
    static constexpr UINT NoId = 0xFFFF;

    ControlKind Kind;
    UINT Id;         // NoId for a control without data
    bool OpensGroup; // a group reaches to the next control that opens one
    bool TakesFocus; // by the tab key
    WideText Text;   // "&" marks a key, unless the control shows it as it is
    TemplateRectangle Place;
};

struct PageTemplate
{
    WideText Title; // of the page's tab
    WideText Font;
    UINT16 FontPoints;
    DWORD Style;
    INT16 Width; // dialog units
    INT16 Height;
    std::vector<TemplateControl> Controls;
};

// Returns nullopt if the module has no such template, or it isn't extended and well formed, or it has a control
// of another kind. Throws E_OUTOFMEMORY.
std::optional<PageTemplate> ReadPageTemplate(UINT templateId);

// The same from the bytes of a template.
std::optional<PageTemplate> ParsePageTemplate(const BYTE *bytes, size_t size);
