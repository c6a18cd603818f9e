// A dialog in the terminal. The user answers it by typing; it is redrawn when it changes.
#pragma once

#include "platform/terminal/DialogPage.h"

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

// Receives what the user does, on the thread that runs the dialog and with no lock held.
class DialogListener
{
public:
    // Return false to keep the dialog open.
    virtual bool ButtonClicked(int id) = 0;
    virtual void RadioButtonClicked(int id) = 0;
    virtual void CheckBoxClicked(bool checked) = 0;
    virtual void ExpandoClicked(bool expanded) = 0;
    virtual void LinkClicked(const std::u16string &address) = 0;
    // Called about every 200 milliseconds if the dialog runs with a timer.
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

    // These may be called from any thread, also before the dialog runs: they change the page, read it, or
    // act as if the user had chosen a button, a radio button or the check box.
    void Change(const std::function<void(DialogPage &)> &change);
    DialogPage Page() const;
    void ClickButton(int id);
    void ClickRadioButton(int id);
    void SetCheckBox(bool checked);

    // Blocks until a button has closed the dialog, and returns its id. Without a terminal it writes the texts
    // to standard error and returns the page's lostButton, which is also the result if the terminal is lost.
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
