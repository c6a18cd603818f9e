// The screen and keyboard of a terminal, as the settings sheet needs them.
#pragma once

#include "terminal/Input.h"

#include <functional>
#include <memory>
#include <string_view>

enum class Look
{
    Plain,
    Strong,
    Dim,
    Link,
    Focus
};

class ISheetScreen
{
public:
    virtual ~ISheetScreen() = default;

    virtual int Columns() const = 0;
    virtual int Rows() const = 0;

    // Whether more than ASCII can be shown.
    virtual bool IsUnicode() const = 0;

    // A frame is drawn by Clear, any number of Write, PlaceCursor if the cursor is to be visible, and Show. Text
    // beyond the edges is cut off.
    virtual void Clear() = 0;
    virtual void Write(int column, int row, std::u16string_view text, Look look) = 0;
    virtual void PlaceCursor(int column, int row) = 0;
    virtual void Show() = 0;

    // Blocks until there is input. Ctrl+C is Escape.
    virtual Input Read() = 0;

    // Drops input that was typed but not yet read.
    virtual void DiscardInput() = 0;
    virtual void Beep() = 0;

    // Clears the terminal, restores its usual state, calls borrower, which may use it, and takes it back.
    virtual void Lend(const std::function<void()> &borrower) = 0;
};

// Opens the user's terminal; null if there is none or it can't place its cursor. The destructor restores the
// terminal's former state, and so does a signal that ends the process.
std::unique_ptr<ISheetScreen> OpenTerminalScreen();
