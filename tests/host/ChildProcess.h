// This test program once more, as another process that is killed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

class ChildProcess
{
public:
    // filter: of the tests that it runs; HALVORA_JOURNAL_TEST names the folder to them.
    ChildProcess(const std::string &filter, const std::filesystem::path &folder);
    ~ChildProcess(); // at once, without a chance to end anything
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

private:
    std::intptr_t m_process; // the system's number or handle
};
