#include "tests/host/ChildProcess.h"

#include <windows.h>

ChildProcess::ChildProcess(const std::string &filter, const std::filesystem::path &folder)
{
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring line = L"child --gtest_filter=" + std::wstring(filter.begin(), filter.end());
    SetEnvironmentVariableW(L"HALVORA_JOURNAL_TEST", folder.c_str());
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    PROCESS_INFORMATION made{};
    CreateProcessW(program, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr, &start,
                   &made);
    SetEnvironmentVariableW(L"HALVORA_JOURNAL_TEST", nullptr);
    CloseHandle(made.hThread);
    m_process = reinterpret_cast<std::intptr_t>(made.hProcess);
}

ChildProcess::~ChildProcess()
{
    const auto process = reinterpret_cast<HANDLE>(m_process);
    TerminateProcess(process, 1);
    WaitForSingleObject(process, 10000);
    CloseHandle(process);
}
