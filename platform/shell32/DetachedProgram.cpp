#include "platform/shell32/DetachedProgram.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{
class FileActions
{
public:
    FileActions()
    {
        posix_spawn_file_actions_init(&m_actions);
        for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        {
            posix_spawn_file_actions_addopen(&m_actions, file, "/dev/null", O_RDWR, 0);
        }
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;

    const posix_spawn_file_actions_t *Get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

// The program gets a session of its own, so that neither it nor its children can use our terminal.
class Attributes
{
public:
    Attributes()
    {
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setflags(&m_attributes,
                                 POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Attributes() { posix_spawnattr_destroy(&m_attributes); }
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;

    const posix_spawnattr_t *Get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

void CollectLater(pid_t program)
{
    std::thread([program] {
        while (waitpid(program, nullptr, 0) < 0 && errno == EINTR)
        {
        }
    }).detach();
}
} // namespace

std::string FindProgram(const std::string &name)
{
    const char *path = std::getenv("PATH");
    for (std::string_view rest = path ? path : ""; !rest.empty();)
    {
        const size_t end = std::min(rest.find(':'), rest.size());
        const std::string file = std::string(rest.substr(0, end)) + '/' + name;
        struct stat about
        {
        };
        if (file[0] == '/' && end > 0 && stat(file.c_str(), &about) == 0 && S_ISREG(about.st_mode) &&
            access(file.c_str(), X_OK) == 0)
        {
            return file;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return std::string();
}

int StartDetached(const std::string &file, const std::vector<std::string> &arguments)
{
    std::vector<char *> words{const_cast<char *>(file.c_str())};
    for (const std::string &argument : arguments)
    {
        words.push_back(const_cast<char *>(argument.c_str()));
    }
    words.push_back(nullptr);
    pid_t program = 0;
    const int result =
        posix_spawn(&program, file.c_str(), FileActions().Get(), Attributes().Get(), words.data(), environ);
    if (result == 0)
    {
        CollectLater(program);
    }
    return result;
}
