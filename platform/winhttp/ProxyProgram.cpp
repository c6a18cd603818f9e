#include "platform/winhttp/ProxyProgram.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
constexpr const char *Program = "/usr/bin/proxy"; // of Debian's libproxy-tools
// Now and then a script engine crashes while its process exits, and takes along what the program had
// not written yet: it is made to write each line at once.
constexpr const char *Unbuffered = "/usr/bin/stdbuf";
constexpr int ScriptFile = 3; // its number in the program
constexpr size_t LargestAnswer = 64 * 1024;

class File
{
public:
    explicit File(int file = -1) : m_file(file) {}
    ~File() { Close(); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    int Get() const { return m_file; }
    void Close()
    {
        if (m_file >= 0)
        {
            close(m_file);
            m_file = -1;
        }
    }

private:
    int m_file;
};

// A file in memory that holds the text, to be read from its start; -1 if there can be none.
int TextFile(std::string_view text)
{
    const int file = memfd_create("halvora", MFD_CLOEXEC);
    for (size_t done = 0; file >= 0 && done < text.size();)
    {
        const ssize_t written = pwrite(file, text.data() + done, text.size() - done, static_cast<off_t>(done));
        if (written <= 0)
        {
            close(file);
            return -1;
        }
        done += static_cast<size_t>(written);
    }
    return file;
}

class FileActions
{
public:
    FileActions(int input, int output, int script)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        if (script >= 0)
        {
            posix_spawn_file_actions_adddup2(&m_actions, script, ScriptFile);
        }
        posix_spawn_file_actions_addclosefrom_np(&m_actions, script >= 0 ? ScriptFile + 1 : ScriptFile);
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;

    const posix_spawn_file_actions_t *Get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

// The first line, without its end; nothing if the output or the time ends before it does.
std::optional<std::string> ReadLine(int file, std::chrono::milliseconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    std::string text;
    for (;;)
    {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd waiting{file, POLLIN, 0};
        const int ready = left.count() > 0 ? poll(&waiting, 1, static_cast<int>(left.count())) : 0;
        if (ready < 0 && errno == EINTR)
        {
            continue;
        }
        char buffer[4096];
        const ssize_t read = ready > 0 ? ::read(file, buffer, sizeof(buffer)) : -1;
        if (read <= 0 || text.size() > LargestAnswer)
        {
            return std::nullopt;
        }
        text.append(buffer, static_cast<size_t>(read));
        if (const size_t end = text.find('\n'); end != std::string::npos)
        {
            return text.substr(0, end);
        }
    }
}

std::vector<std::string> Words(std::string_view line)
{
    std::vector<std::string> words;
    while (!line.empty())
    {
        const size_t end = std::min(line.find(' '), line.size());
        if (end > 0)
        {
            words.emplace_back(line.substr(0, end));
        }
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return words;
}

std::optional<std::vector<std::string>> Run(const std::string &url, int script, char *const *environment,
                                            std::chrono::milliseconds limit)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
    {
        return std::nullopt;
    }
    const File answer(ends[0]);
    File output(ends[1]);
    const File input(TextFile(url + '\n'));
    pid_t program = 0;
    char *arguments[] = {const_cast<char *>(Unbuffered), const_cast<char *>("-oL"), const_cast<char *>(Program),
                         nullptr};
    if (input.Get() < 0 || posix_spawn(&program, Unbuffered, FileActions(input.Get(), output.Get(), script).Get(),
                                       nullptr, arguments, environment) != 0)
    {
        return std::nullopt;
    }
    output.Close();
    const std::optional<std::string> line = ReadLine(answer.Get(), limit);
    kill(program, SIGKILL); // nothing that it may still do is wanted
    while (waitpid(program, nullptr, 0) < 0 && errno == EINTR)
    {
    }
    std::vector<std::string> words = Words(line.value_or(""));
    return words.empty() ? std::nullopt : std::optional(std::move(words));
}
} // namespace

std::optional<std::vector<std::string>> AskForProxies(const std::string &url, std::chrono::milliseconds limit)
{
    return Run(url, -1, environ, limit);
}

std::optional<std::vector<std::string>> AskScript(const std::string &script, const std::string &url,
                                                  std::chrono::milliseconds limit)
{
    // Above the numbers that the program's files get, so that none of them takes its place.
    const File low(TextFile(script));
    const File file(low.Get() >= 0 ? fcntl(low.Get(), F_DUPFD_CLOEXEC, ScriptFile + 1) : -1);
    if (file.Get() < 0)
    {
        return std::nullopt;
    }
    // Nothing else: the desktop's settings, which libproxy finds by the environment, have no say here.
    const char *environment[] = {"http_proxy=pac+file:///proc/self/fd/3", "https_proxy=pac+file:///proc/self/fd/3",
                                 "PATH=/usr/bin:/bin", nullptr};
    return Run(url, file.Get(), const_cast<char *const *>(environment), limit);
}
