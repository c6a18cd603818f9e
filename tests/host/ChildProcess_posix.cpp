#include "tests/host/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

ChildProcess::ChildProcess(const std::string &filter, const std::filesystem::path &folder)
{
    const std::string argument = "--gtest_filter=" + filter;
    ::setenv("HALVORA_JOURNAL_TEST", folder.c_str(), 1);
    m_process = ::fork();
    if (m_process == 0)
    {
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::execl("/proc/self/exe", "child", argument.c_str(), nullptr);
        ::_exit(127);
    }
    ::unsetenv("HALVORA_JOURNAL_TEST");
}

ChildProcess::~ChildProcess()
{
    ::kill(static_cast<pid_t>(m_process), SIGKILL);
    ::waitpid(static_cast<pid_t>(m_process), nullptr, 0);
}
