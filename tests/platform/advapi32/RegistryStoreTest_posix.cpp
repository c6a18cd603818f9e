#include "com/HandleOwner.h"
#include "com/WideText.h"
#include "platform/advapi32/RegistryStore.h"
#include "tests/host/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <string>
#include <thread>

#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
namespace fs = std::filesystem;
using testing::HasSubstr;

const std::string Heading = "Windows Registry Editor Version 5.00\n";

class RegistryStore : public testing::Test
{
protected:
    void SetUp() override { SetRegistryStorePath(m_file); }
    void TearDown() override { SetRegistryStorePath(""); }

    void Put(const std::string &text) const { std::ofstream(m_file, std::ios::binary) << text; }

    static std::string TextOf(const std::string &file)
    {
        std::ifstream bytes(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(bytes), {});
    }
    std::string FileText() const { return TextOf(m_file); }

    // Without the second line, which holds the checksum.
    std::string UncheckedText() const
    {
        std::string text = FileText();
        const size_t start = text.find("; checked: ");
        EXPECT_EQ(start, Heading.size());
        return text.erase(start, text.find('\n', start) + 1 - start);
    }

    static LSTATUS Set(const WCHAR *name, DWORD number)
    {
        RegistryKeyOwner key;
        const LSTATUS result = RegCreateKeyExW(HKEY_CURRENT_USER, TEXT("Software\\Test"), 0, nullptr, 0,
                                               KEY_ALL_ACCESS, nullptr, key.Put(), nullptr);
        return result != ERROR_SUCCESS
                   ? result
                   : RegSetValueExW(key.Get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE *>(&number), 4);
    }

    // The number, or -1.
    static int Get(const WCHAR *name)
    {
        RegistryKeyOwner key;
        DWORD number = 0;
        DWORD size = 4;
        RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("SOFTWARE\\Test"), 0, KEY_READ, key.Put());
        const LSTATUS result =
            RegQueryValueExW(key.Get(), name, nullptr, nullptr, reinterpret_cast<BYTE *>(&number), &size);
        return result == ERROR_SUCCESS ? static_cast<int>(number) : -1;
    }

    const TemporaryFolder m_folder;
    const std::string m_file = m_folder.Path() / "registry.reg";
};

TEST_F(RegistryStore, WritesKeysAndValuesInUtf8)
{
    ASSERT_EQ(ERROR_SUCCESS, Set(TEXT("B\u00E4"), 2));
    RegistryKeyOwner key;
    RegCreateKeyExW(HKEY_CURRENT_USER, TEXT("Software\\Test\\Below"), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                    key.Put(), nullptr);
    const WCHAR text[] = TEXT("say \"C:\\\" \xD83D\xDE00");
    RegSetValueExW(key.Get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE *>(text), sizeof(text));
    EXPECT_EQ(Heading +
                  "\n[HKEY_CURRENT_USER\\Software\\Test]\n\"B\xC3\xA4\"=dword:00000002\n"
                  "\n[HKEY_CURRENT_USER\\Software\\Test\\Below]\n@=\"say \\\"C:\\\\\\\" \xF0\x9F\x98\x80\"\n",
              UncheckedText());
    struct stat status;
    ASSERT_EQ(0, stat(m_file.c_str(), &status));
    EXPECT_EQ(0600u, status.st_mode & 0777);

    SetRegistryStorePath(m_file); // read anew, under names in any case
    EXPECT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("SOFTWARE\\TEST\\below"), 0, KEY_READ, key.Put()));
    WCHAR found[32] = {};
    DWORD type = 0;
    DWORD size = sizeof(text) - 1;
    const auto read = [&] {
        return RegQueryValueExW(key.Get(), nullptr, nullptr, &type, reinterpret_cast<BYTE *>(found), &size);
    };
    EXPECT_EQ(ERROR_MORE_DATA, read());
    EXPECT_EQ(sizeof(text), size);
    EXPECT_EQ(ERROR_SUCCESS, read());
    EXPECT_EQ(WideText(text), found);
    EXPECT_EQ(DWORD{REG_SZ}, type);
    EXPECT_EQ(2, Get(TEXT("b\u00C4")));
}

TEST_F(RegistryStore, TakesOverWhatEarlierVersionsWrote)
{
    const std::string settings = "[HKEY_CURRENT_USER\\Software\\Test]\n; mine\n\"odd\"=something new\n"
                                 "\"A\"=dword:1\n\"List\"=hex(7):61,00,00,00\n";
    Put(Heading + "\n[HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID\\{1}\\InprocServer32]\n@=\"/a.so\"\n\n" +
        "[HKEY_CURRENT_USER\\SOFTWARE\\Classes\\x]\n@=\"y\"\n[-HKEY_CURRENT_USER\\Z]\n\"gone\"=-\n" + settings);
    EXPECT_EQ(1, Get(TEXT("a")));
    EXPECT_FALSE(RegistryStoreProblem());
    ASSERT_EQ(ERROR_SUCCESS, Set(TEXT("B"), 2));
    EXPECT_EQ(Heading + "\n[HKEY_CURRENT_USER\\Software\\Test]\n\"A\"=dword:00000001\n"
                        "\"List\"=hex(7):61,00,00,00\n\"B\"=dword:00000002\n",
              UncheckedText());
}

TEST_F(RegistryStore, PutsADamagedFileAsideAndSaysSoOnce)
{
    const std::string cases[] = {
        "<html>not a registry</html>\n",
        Heading + "[HKEY_CURRENT_USER\\Software\\Test]\n\"A\"=dword:1\n\"Text\"=\"cut o",
        Heading + "[HKEY_CURRENT_USER\\Software\\Test]\n\"A\"=hex(3):01,02,",
        "",
    };
    int number = 0;
    for (const std::string &text : cases)
    {
        Put(text);
        EXPECT_EQ(-1, Get(TEXT("A")));
        const auto problem = RegistryStoreProblem();
        ASSERT_TRUE(problem) << text;
        EXPECT_EQ(m_file + ".damaged-" + std::to_string(++number), problem->keptAs);
        EXPECT_FALSE(RegistryStoreProblem());
        EXPECT_EQ(text, TextOf(problem->keptAs));
        EXPECT_EQ(ERROR_SUCCESS, Set(TEXT("A"), 5));
        EXPECT_EQ(5, Get(TEXT("A")));
    }
}

TEST_F(RegistryStore, NoticesEveryCutAndEveryChangedByte)
{
    ASSERT_EQ(ERROR_SUCCESS, Set(TEXT("A"), 1));
    ASSERT_EQ(ERROR_SUCCESS, Set(TEXT("B"), 0));
    const std::string whole = FileText();
    const auto isNoticed = [&](const std::string &text) {
        Put(text);
        SetRegistryStorePath(m_file);
        const auto problem = RegistryStoreProblem();
        return problem && fs::remove(problem->keptAs);
    };
    for (size_t i = 0; i < whole.size(); ++i)
    {
        EXPECT_TRUE(isNoticed(whole.substr(0, i))) << "cut at " << i;
        std::string changed = whole;
        changed[i] = static_cast<char>(changed[i] ^ (1 << i % 8));
        EXPECT_TRUE(isNoticed(changed) || i < whole.find('[')) << "changed at " << i;
    }
    Put(whole);
    SetRegistryStorePath(m_file);
    EXPECT_FALSE(RegistryStoreProblem());
    EXPECT_EQ(1, Get(TEXT("A")));
}

TEST_F(RegistryStore, WhatCannotBeReadIsNotCalledDamaged)
{
    fs::create_directory(m_file);
    EXPECT_EQ(-1, Get(TEXT("A")));
    const auto problem = RegistryStoreProblem();
    ASSERT_TRUE(problem);
    EXPECT_EQ(ERROR_ACCESS_DENIED, problem->readResult);
    EXPECT_EQ("", problem->keptAs);
    EXPECT_EQ(ERROR_ACCESS_DENIED, Set(TEXT("A"), 1));
}

TEST_F(RegistryStore, SeesAndKeepsTheChangesOfOtherProcesses)
{
    ASSERT_EQ(ERROR_SUCCESS, Set(TEXT("A"), 1));
    constexpr int processes = 4;
    for (int process = 0; process < processes; ++process)
    {
        if (fork() == 0)
        {
            bool good = true;
            for (int i = 0; i < 10; ++i)
            {
                const WCHAR name[] = {static_cast<WCHAR>(u'0' + process), static_cast<WCHAR>(u'a' + i), 0};
                RegistryStoreBatch batch;
                good = Set(name, i) == ERROR_SUCCESS && batch.Commit() == ERROR_SUCCESS && good;
            }
            _exit(good ? 0 : 1);
        }
    }
    for (int process = 0; process < processes; ++process)
    {
        int status = -1;
        wait(&status);
        EXPECT_EQ(0, status);
    }
    for (int process = 0; process < processes; ++process)
    {
        for (int i = 0; i < 10; ++i)
        {
            const WCHAR name[] = {static_cast<WCHAR>(u'0' + process), static_cast<WCHAR>(u'a' + i), 0};
            EXPECT_EQ(i, Get(name)) << "process " << process;
        }
    }
    EXPECT_EQ(1, Get(TEXT("A")));
}

TEST_F(RegistryStore, FailsWholeWhenItCannotBeWritten)
{
    ASSERT_EQ(ERROR_SUCCESS, Set(TEXT("A"), 1));
    const std::string before = FileText();
    const fs::path lock = m_file + ".lock"; // a folder can't be one
    fs::remove(lock);
    fs::create_directory(lock);
    EXPECT_EQ(ERROR_ACCESS_DENIED, Set(TEXT("A"), 2));
    EXPECT_EQ(1, Get(TEXT("A")));
    EXPECT_EQ(before, FileText());
    fs::remove(lock);
    const fs::path next = m_file + ".new";
    fs::create_directory(next);
    EXPECT_NE(ERROR_SUCCESS, Set(TEXT("A"), 2));
    EXPECT_EQ(1, Get(TEXT("A")));
    EXPECT_EQ(before, FileText());
    fs::remove(next);
    EXPECT_EQ(ERROR_SUCCESS, Set(TEXT("A"), 2));
}

TEST_F(RegistryStore, ABatchReplacesTheFileOnce)
{
    RegistryStoreBatch batch;
    for (DWORD i = 0; i < 26; ++i)
    {
        const WCHAR name[] = {static_cast<WCHAR>(u'A' + i), 0};
        ASSERT_EQ(ERROR_SUCCESS, Set(name, i));
    }
    EXPECT_EQ(3, Get(TEXT("D")));
    EXPECT_FALSE(fs::exists(m_file));
    EXPECT_EQ(ERROR_SUCCESS, batch.Commit());
    EXPECT_THAT(FileText(), HasSubstr("\"D\"=dword:00000003\n"));
}
} // namespace
