// flickr-loopback: the photo service on 127.0.0.1, for demonstrations, tests and experiments.
#include "loopback/LoopbackService.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace
{

namespace fs = std::filesystem;

fs::path DefaultStore()
{
    const char *data = std::getenv("XDG_DATA_HOME");
    const char *home = std::getenv("HOME");
    const fs::path base = data && *data ? fs::path(data) : fs::path(home ? home : ".") / ".local" / "share";
    return base / "flickr-loopback";
}

// Writes the file under another name and renames it, since a script that waits for the file reads it as
// soon as it exists.
void WriteReadyFile(const fs::path &path, const std::string &text)
{
    const fs::path fresh = path.string() + "." + std::to_string(getpid()) + ".new";
    const int file = open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool written = file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (file < 0 || close(file) != 0 || !written)
    {
        throw std::runtime_error("can't write the ready file " + fresh.string());
    }
    fs::rename(fresh, path);
}

// Blocks SIGINT and SIGTERM in every thread created from now on, so that one thread can wait for them.
sigset_t BlockEndingSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return ending;
}

void Serve(const loopback::ServiceOptions &options, const fs::path &readyFile)
{
    const sigset_t ending = BlockEndingSignals();
    loopback::LoopbackService service(options);
    std::thread server([&] { service.Run(); });
    const std::string environment = service.ClientEnvironment();
    fmt::print("Listening on 127.0.0.1, port {0}; the gallery is at http://127.0.0.1:{0}/\n"
               "A client needs:\n{1}",
               service.Port(), environment);
    std::fflush(stdout);
    std::string failure;
    try
    {
        if (!readyFile.empty())
        {
            WriteReadyFile(readyFile, environment);
        }
        int caught = 0;
        sigwait(&ending, &caught);
    }
    catch (const std::exception &error)
    {
        failure = error.what();
    }
    service.Stop();
    server.join();
    if (!failure.empty())
    {
        throw std::runtime_error(failure);
    }
}

} // namespace

int main(int argc, char **argv)
{
    loopback::ServiceOptions options;
    options.store = DefaultStore();
    std::string readyFile;
    CLI::App program("The photo service on 127.0.0.1, for demonstrations, tests and experiments.");
    program.add_option("--port", options.port, "Port to listen on; 0 (the default) takes a free one")
        ->check(CLI::Range(0, 65535));
    program.add_option("--store", options.store, "Folder of pictures, index and certificates")
        ->capture_default_str();
    program.add_option("--ready-file", readyFile, "Written, as shell assignments, once the service listens");
    program.add_option("--account", options.accountProperties,
                       "NAME=VALUE: a property of the account, such as level=pro, max_file_size=BYTES, "
                       "bandwidth_max=BYTES, bandwidth_used=BYTES, full_name=TEXT");
    program.add_option("--token", options.tokens, "TOKEN:SECRET: one more pair that the account accepts");
    program.add_option("--fault", options.faults,
                       "Misbehave: kind=status&status=504&count=2&target=upload and the like; GET "
                       "/_loopback/ lists them");
    CLI11_PARSE(program, argc, argv);
    try
    {
        Serve(options, readyFile);
    }
    catch (const std::exception &error)
    {
        fmt::print(stderr, "flickr-loopback: {}\n", error.what());
        return 1;
    }
    return 0;
}
