#include "host/SignalWatch_posix.h"

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace
{
sigset_t WatchedSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGWINCH})
    {
        // A signal that is blocked would be queued although it is ignored.
        struct sigaction action = {};
        if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
        {
            sigaddset(&signals, number);
        }
    }
    return signals;
}
} // namespace

SignalWatch::SignalWatch() : m_watched(WatchedSignals())
{
    m_signals = ::signalfd(-1, &m_watched, SFD_CLOEXEC | SFD_NONBLOCK);
    m_wakings = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_signals < 0 || m_wakings < 0)
    {
        throw std::system_error(errno, std::generic_category(), "watching signals");
    }
    ::pthread_sigmask(SIG_BLOCK, &m_watched, nullptr);
}

SignalWatch::~SignalWatch()
{
    ::pthread_sigmask(SIG_UNBLOCK, &m_watched, nullptr);
    ::close(m_signals);
    ::close(m_wakings);
}

RunSignal SignalWatch::Wait(std::chrono::milliseconds time)
{
    pollfd watched[] = {{m_signals, POLLIN, 0}, {m_wakings, POLLIN, 0}};
    if (::poll(watched, 2, static_cast<int>(time.count())) <= 0)
    {
        return RunSignal::None;
    }
    signalfd_siginfo information = {};
    if (::read(m_signals, &information, sizeof(information)) == sizeof(information))
    {
        switch (information.ssi_signo)
        {
        case SIGINT:
            return RunSignal::Interrupt;
        case SIGWINCH:
            return RunSignal::Resize;
        default:
            return RunSignal::Terminate;
        }
    }
    eventfd_t ignored;
    ::eventfd_read(m_wakings, &ignored);
    return RunSignal::None;
}

void SignalWatch::Wake()
{
    ::eventfd_write(m_wakings, 1);
}

void SignalWatch::EndProcessByInterrupt()
{
    ::signal(SIGINT, SIG_DFL);
    ::pthread_sigmask(SIG_UNBLOCK, &m_watched, nullptr);
    ::raise(SIGINT);
    std::_Exit(130);
}
