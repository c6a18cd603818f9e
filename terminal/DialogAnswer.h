// Interprets a line that the user typed as an answer to a dialog.
#pragma once

#include "terminal/Dialog.h"

#include <string_view>

struct DialogAnswer
{
    const DialogButton *Button = nullptr;
    bool IsExpando = false;
};

// A button is chosen by its number or by an unambiguous beginning of its name, the expandable text by "+" or "-".
// An empty line chooses the default button. Neither: the line means nothing. The page must outlive the answer.
DialogAnswer ReadAnswer(const DialogPage &page, std::u16string_view typed);
