// The one rule for signals while the state of a terminal is changed: a signal that ends the process first gives the
// terminal back as it was.
#pragma once

#include <termios.h>

// Between these calls, a signal that ends the process restores the settings `before`, and then does what it did
// before the first call. They may be nested; the outermost pair counts.
void WatchSignals(int descriptor, const termios &before);
void LeaveSignals();

// What the terminal must also be sent to be as it was. The text must stay where it is.
void SetFarewell(const char *text);
