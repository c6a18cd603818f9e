// The signals that a run listens to, waited for by one thread.
#pragma once

#include <signal.h>

#include <chrono>

enum class RunSignal
{
    None,
    Interrupt, // Ctrl-C
    Terminate,
    Resize // the terminal has another width
};

// While it lives, the signals above are blocked, and Wait alone receives them. Make it before any other
// thread: a thread inherits its creator's mask of blocked signals. Signals that the process was started to
// ignore, as under nohup, stay ignored. Throws std::system_error.
class SignalWatch
{
public:
    SignalWatch();
    ~SignalWatch();
    SignalWatch(const SignalWatch &) = delete;
    SignalWatch &operator=(const SignalWatch &) = delete;

    // Waits for a signal, a Wake, or the end of the time.
    RunSignal Wait(std::chrono::milliseconds time);

    // Ends the present or next Wait with None. Any thread.
    void Wake();

    // Ends the process the way the signal would have.
    [[noreturn]] void EndProcessByInterrupt();

private:
    const sigset_t m_watched;
    int m_signals = -1;
    int m_wakings = -1;
};
