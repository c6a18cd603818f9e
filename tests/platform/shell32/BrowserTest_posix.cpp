// How ShellExecuteW starts the program that opens pages. A script in its place records how it was started.
#include "tests/host/TemporaryFolder.h"

#include <windows.h>
#include <shellapi.h>

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
using testing::HasSubstr;
using testing::Not;

class Browser : public testing::Test
{
protected:
    void SetUp() override
    {
        m_path = std::getenv("PATH");
        setenv("PATH", (m_folder.Path().string() + ":" + m_path).c_str(), 1);
        setenv("RECORD", (m_folder.Path() / "record").c_str(), 1);
    }
    void TearDown() override { setenv("PATH", m_path.c_str(), 1); }

    void Install(const std::string &script)
    {
        fs::permissions(m_folder.Write("xdg-open", "#!/bin/sh\n" + script), fs::perms::owner_all);
    }

    // Waits for the script's record and returns it; empty if there is none after some seconds.
    std::string Record() const
    {
        for (int i = 0; i < 500 && !fs::exists(m_folder.Path() / "record"); ++i)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return m_folder.Read("record");
    }

    static INT_PTR Open(const WCHAR *address, const WCHAR *verb = TEXT("open"))
    {
        return reinterpret_cast<INT_PTR>(
            ShellExecuteW(nullptr, verb, address, nullptr, nullptr, SW_SHOWMAXIMIZED));
    }

    const TemporaryFolder m_folder;
    std::string m_path;
};

TEST_F(Browser, GetsTheAddressAsItIsAndNothingElse)
{
    const int leaked = open("/dev/null", O_RDONLY); // without close-on-exec
    Install("{ printf '%s\\n' \"$#\" \"$@\"; ls -l /proc/$$/fd; } > \"$RECORD.new\" 2>&1\n"
            "echo 'scribbled on the terminal'\nmv \"$RECORD.new\" \"$RECORD\"\nsleep 3\n");
    const WCHAR *const address = TEXT("https://www.example/authorize?a=$(id)&b=`x`;'\"%20é oauth_token=1-2");
    testing::internal::CaptureStdout();
    const auto before = std::chrono::steady_clock::now();
    ASSERT_GT(Open(address), 32);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(3)) << "it is waited for";
    const std::string record = Record();
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_THAT(record, testing::StartsWith("1\nhttps://www.example/authorize?a=$(id)&b=`x`;'\"%20\xC3\xA9 "
                                            "oauth_token=1-2\n"));
    EXPECT_THAT(record, HasSubstr("0 -> /dev/null"));
    EXPECT_THAT(record, Not(HasSubstr(" " + std::to_string(leaked) + " -> /dev/null"))) << record;
    close(leaked);
}

TEST_F(Browser, OpensPagesOfTheWebAlone)
{
    Install("touch \"$RECORD\"\n");
    const struct
    {
        const WCHAR *verb, *file;
        INT_PTR result;
    } cases[] = {
        {TEXT("open"), TEXT("file:///etc/passwd"), SE_ERR_NOASSOC},
        {TEXT("open"), TEXT("--help"), SE_ERR_NOASSOC},
        {TEXT("open"), TEXT("http://"), SE_ERR_NOASSOC},
        {TEXT("open"), TEXT("http://a.example/\nX"), SE_ERR_ACCESSDENIED},
        {TEXT("print"), TEXT("http://a.example/"), SE_ERR_NOASSOC},
        {TEXT("open"), TEXT(""), SE_ERR_FNF},
    };
    for (const auto &c : cases)
    {
        EXPECT_EQ(c.result, Open(c.file, c.verb));
        EXPECT_NE(DWORD{ERROR_SUCCESS}, GetLastError());
    }
    EXPECT_EQ("", m_folder.Read("record"));

    setenv("PATH", "relative:/no/such/folder", 1);
    EXPECT_EQ(SE_ERR_FNF, Open(TEXT("http://a.example/")));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, GetLastError());
}
} // namespace
