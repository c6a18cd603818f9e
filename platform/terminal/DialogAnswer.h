// What a line that somebody typed means to a dialog.
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

// Buttons go by their number or by the beginning of their name, if no other begins so; radio buttons by
// letter or name, the check box by "x", the expandable text by "+" or "-", links by "L" and a number. The
// empty answer is the default button's.
DialogAnswer ReadAnswer(const DialogPage &page, std::u16string_view typed);
