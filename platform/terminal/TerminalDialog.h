// A dialog in the terminal: drawn, answered by typing, redrawn when it changes.
#pragma once

#include "platform/terminal/DialogPage.h"

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

// Told of what the user does, on the thread that runs the dialog and with nothing locked.
class DialogListener
{
public:
    // False keeps the dialog open.
    virtual bool ButtonClicked(int id) = 0;
    virtual void RadioButtonClicked(int id) = 0;
    virtual void CheckBoxClicked(bool checked) = 0;
    virtual void ExpandoClicked(bool expanded) = 0;
    virtual void LinkClicked(const std::u16string &address) = 0;
    // About every 200 milliseconds, if the dialog is run with a timer.
    virtual void TimerPassed() = 0;

protected:
    ~DialogListener() = default;
};

class TerminalDialog
{
public:
    TerminalDialog();
    ~TerminalDialog();
    TerminalDialog(const TerminalDialog &) = delete;
    TerminalDialog &operator=(const TerminalDialog &) = delete;

    // Any thread, also before the dialog runs: changes what is shown, reads it, or does as if the user
    // had chosen a button, radio button or the check box.
    void Change(const std::function<void(DialogPage &)> &change);
    DialogPage Page() const;
    void ClickButton(int id);
    void ClickRadioButton(int id);
    void SetCheckBox(bool checked);

    // Blocks until a button has closed the dialog, and returns its id. Without a terminal the texts go to
    // standard error, and the page's lostButton is the answer; so it is if the terminal goes away.
    int Run(DialogListener &listener, bool timer);

private:
    class Session;
    struct Click
    {
        enum class Kind
        {
            Button,
            RadioButton,
            CheckBox
        } kind;
        int id;
    };

    void Post(Click click);
    void Wake();
    void ForgetWakings();

    mutable std::mutex m_lock;
    DialogPage m_page;
    std::deque<Click> m_clicks;
    unsigned m_changes = 0;
    int m_wake;
};
