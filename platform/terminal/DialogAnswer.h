// Interprets a line that the user typed as an answer to a dialog.
#pragma once

#include "platform/terminal/DialogPage.h"

#include <cstddef>
#include <string_view>

enum class AnswerKind
{
    Unknown,
    Button,
    RadioButton,
    CheckBox,
    Expando,
    Link
};

struct DialogAnswer
{
    AnswerKind kind = AnswerKind::Unknown;
    size_t index = 0; // of the button, radio button or link
};

// A button is chosen by its number or by an unambiguous beginning of its name, a radio button by its letter
// or name, the check box by "x", the expandable text by "+" or "-", a link by "L" and its number. An empty
// line chooses the default button.
DialogAnswer ReadAnswer(const DialogPage &page, std::u16string_view typed);
