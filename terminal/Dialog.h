// A dialog in the terminal: texts and buttons, which the user answers by typing.
#pragma once

#include <string>
#include <vector>

enum class DialogIcon
{
    None,
    Information,
    Warning,
    Error,
    Shield
};

struct DialogButton
{
    int Id = 0;
    std::u16string Text;
};

struct DialogPage
{
    std::u16string Title;
    DialogIcon Icon = DialogIcon::None;
    std::u16string Instruction;
    std::u16string Content;

    std::u16string ExpandedText; // empty: nothing to expand
    std::u16string ExpandedCaption;
    std::u16string CollapsedCaption;
    bool IsExpanded = false;

    std::vector<DialogButton> Buttons;
    int DefaultButton = 0;
    int CancelButton = 0; // the button that Escape presses; 0 if the dialog can't be cancelled
    int LostButton = 0;   // the result without a terminal
};

// The caption of a button that every system has, by its identifier (IDOK, IDCANCEL ...); empty for any other.
const char16_t *WordOfButton(int id);

// Blocks until the user has chosen a button, and returns its identifier. Without a terminal it writes the texts to
// standard error and returns LostButton, which is also the result if the terminal is lost.
int RunDialog(const DialogPage &page);
