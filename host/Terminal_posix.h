// Standard output and standard error, and the terminal behind them if there is one.
#pragma once

#include "host/LiveDisplay.h"

#include <cstddef>
#include <string>
#include <string_view>

// What standard output can show: colours unless NO_COLOR is set, blocks where the locale is UTF-8,
// a progress line where the terminal can place its cursor.
DisplayOptions DetectDisplay();

// Whether there is a terminal that dialogs can ask in: the session's own, whatever the standard files are.
bool HasTerminal();

// Whether standard input and output are a terminal that can show the settings sheet.
bool IsUserAtTerminal();

// Columns of the terminal; 80 if it doesn't say.
size_t TerminalColumns();

// Writes everything to standard output, if need be in several calls. What can't be written is lost.
void WriteOut(std::string_view text);

// The same to standard error.
void WriteFaults(std::string_view text);

// The first error number of a WriteOut that failed, 0 if none did. A reader that has seen enough and closed its
// pipe is no failure.
int OutputError();

// Writes a message for the user to standard error: UTF-8, made safe for one line.
void Complain(const std::string &words);
