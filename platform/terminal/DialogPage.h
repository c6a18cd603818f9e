// What a dialog shows at one moment, independent of Windows' types and of how it is drawn.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum class DialogIcon
{
    None,
    Information,
    Warning,
    Error,
    Shield,
    Question
};

struct DialogButton
{
    int id = 0;
    std::u16string text;
    std::u16string note; // of a command link
    bool enabled = true;
    bool elevated = false; // needs administrator rights
};

struct DialogRadioButton
{
    int id = 0;
    std::u16string text;
    bool enabled = true;
};

enum class ProgressState
{
    Normal = 1, // same values as PBST_NORMAL, PBST_ERROR and PBST_PAUSED
    Error = 2,
    Paused = 3
};

struct DialogProgress
{
    bool shown = false;
    bool marquee = false; // busy, for an unknown time
    bool running = true;
    int low = 0;
    int high = 100;
    int position = 0;
    ProgressState state = ProgressState::Normal;
};

struct DialogPage
{
    std::u16string title;
    DialogIcon icon = DialogIcon::None;
    std::u16string instruction;
    std::u16string content;

    std::u16string expandedText; // empty: nothing to expand
    std::u16string expandedCaption;
    std::u16string collapsedCaption;
    bool expanded = false;
    bool expandsBelowFooter = false;

    std::u16string footer;
    DialogIcon footerIcon = DialogIcon::None;

    DialogProgress progress;
    std::vector<DialogRadioButton> radioButtons;
    int selectedRadioButton = 0;
    std::u16string checkBox; // empty: none
    bool checked = false;

    std::vector<DialogButton> buttons;
    int defaultButton = 0;
    bool commandLinks = false; // buttons with a note below each, one a line
    bool commandLinkArrows = false;
    std::vector<std::u16string> links; // addresses, in the order of the marks [L1], [L2] in the texts

    int cancelButton = 0; // the button that Escape presses; 0 if the dialog can't be cancelled
    int lostButton = 0;   // the result without a terminal
};
