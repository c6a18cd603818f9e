// Plays the user of code that asks at a terminal: the code runs in a child process on a pseudo-terminal,
// and the test reads its screen and types its keys.
#pragma once

#include <gtest/gtest.h>

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <string>

// Runs `ask` in the child. A failed expectation there must also reach the parent.
inline std::string ResultOf(const std::function<std::string()> &ask)
{
    const std::string result = ask();
    return testing::Test::HasFailure() ? "failed expectations; " + result : result;
}

class TerminalRun
{
public:
    // Runs `ask` in the child; Result returns what it returned.
    explicit TerminalRun(const std::function<std::string()> &ask, unsigned short columns = 80,
                         unsigned short rows = 24, const char *terminal = "xterm")
    {
        int results[2] = {};
        EXPECT_EQ(pipe(results), 0);
        winsize size{rows, columns, 0, 0};
        m_child = forkpty(&m_terminal, nullptr, nullptr, &size);
        if (m_child == 0)
        {
            setenv("TERM", terminal, 1);
            setenv("NO_COLOR", "1", 1);
            setenv("LC_ALL", "C.UTF-8", 1);
            for (const int number : {SIGHUP, SIGINT, SIGQUIT})
            {
                signal(number, SIG_DFL); // also where the tests run under nohup, or in a script's background
            }
            const std::string result = ResultOf(ask);
            const bool told =
                write(results[1], result.data(), result.size()) == static_cast<ssize_t>(result.size());
            _exit(told ? 0 : 1);
        }
        close(results[1]);
        m_results = results[0];
    }

    ~TerminalRun()
    {
        if (m_child > 0)
        {
            kill(m_child, SIGKILL);
            waitpid(m_child, nullptr, 0);
        }
        close(m_terminal);
        close(m_results);
    }
    TerminalRun(const TerminalRun &) = delete;
    TerminalRun &operator=(const TerminalRun &) = delete;

    // Reads the screen until the text has appeared after the previously awaited one.
    bool WaitFor(const std::string &text)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        for (;;)
        {
            const size_t at = m_screen.find(text, m_seen);
            if (at != std::string::npos)
            {
                m_seen = at + text.size();
                return true;
            }
            pollfd ready{m_terminal, POLLIN, 0};
            char bytes[4096];
            const bool late = std::chrono::steady_clock::now() > end;
            const ssize_t count = !late && poll(&ready, 1, 1000) > 0 ? read(m_terminal, bytes, sizeof(bytes)) : 0;
            if (late || count < 0)
            {
                ADD_FAILURE() << "No \"" << text << "\" on the screen:\n" << m_screen;
                return false;
            }
            m_screen.append(bytes, static_cast<size_t>(count));
        }
    }

    bool Type(const std::string &keys)
    {
        return write(m_terminal, keys.data(), keys.size()) == static_cast<ssize_t>(keys.size());
    }

    // Waits for a dialog's prompt, then types the keys.
    bool Answer(const std::string &keys) { return WaitFor("   > ") && Type(keys); }

    void Resize(unsigned short columns, unsigned short rows)
    {
        const winsize size{rows, columns, 0, 0};
        EXPECT_EQ(ioctl(m_terminal, TIOCSWINSZ, &size), 0);
    }

    // Waits for `ask` and returns its result; empty if the child ended otherwise.
    std::string Result()
    {
        std::string result;
        pollfd ready{m_results, POLLIN, 0};
        char bytes[4096];
        for (ssize_t count = 1; count > 0 && poll(&ready, 1, 30000) > 0;)
        {
            count = read(m_results, bytes, sizeof(bytes));
            result.append(bytes, static_cast<size_t>(count > 0 ? count : 0));
        }
        return result;
    }

    // Sends the signal to the child. Returns the signal that ended it, or 0.
    int EndBySignal(int number)
    {
        int status = 0;
        const bool hasEnded = kill(m_child, number) == 0 && waitpid(m_child, &status, 0) == m_child;
        m_child = hasEnded ? -1 : m_child;
        return hasEnded && WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }

    bool EchoesKeys() const
    {
        termios settings{};
        return tcgetattr(m_terminal, &settings) == 0 && (settings.c_lflag & ECHO) && (settings.c_lflag & ICANON);
    }

    const std::string &Screen() const { return m_screen; }

private:
    pid_t m_child = -1;
    int m_terminal = -1;
    int m_results = -1;
    std::string m_screen;
    size_t m_seen = 0;
};

// Runs `ask` in a child process without a terminal. Returns its standard error, followed by its result.
inline std::string RunWithoutTerminal(const std::function<std::string()> &ask)
{
    int results[2] = {};
    EXPECT_EQ(pipe(results), 0);
    const pid_t child = fork();
    if (child == 0)
    {
        setsid();
        const int nothing = open("/dev/null", O_RDONLY);
        dup2(nothing, STDIN_FILENO);
        dup2(results[1], STDERR_FILENO);
        setenv("LC_ALL", "C.UTF-8", 1);
        const std::string result = ResultOf(ask);
        _exit(write(results[1], result.data(), result.size()) == static_cast<ssize_t>(result.size()) ? 0 : 1);
    }
    close(results[1]);
    std::string all;
    char bytes[4096];
    for (ssize_t count; (count = read(results[0], bytes, sizeof(bytes))) > 0;)
    {
        all.append(bytes, static_cast<size_t>(count));
    }
    close(results[0]);
    waitpid(child, nullptr, 0);
    return all;
}
