// A service in the test's own process, and a client for it: libcurl with its own small OAuth signer, so
// that the service's verifier is checked against independent code.
#pragma once

#include "loopback/LoopbackService.h"

#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using Fields = std::vector<std::pair<std::string, std::string>>;

struct Answer
{
    // libcurl's result code; 0 is success.
    int result = 0;
    long status = 0;
    std::string body;
    std::string contentType;
};

struct UploadFile
{
    std::string name = "picture.jpg";
    std::string bytes = "\xFF\xD8\xFF\xE0 a picture \xFF\xD9";
    std::string type = "image/jpeg";
};

// Uses one connection for as long as the service keeps it open.
class LoopbackClient
{
public:
    LoopbackClient(int port, std::filesystem::path authority);
    ~LoopbackClient();

    // Signed for the demonstration account.
    Answer Rest(const std::string &method);
    Answer Upload(const Fields &fields, const UploadFile &file = {});
    // Without a signature; follows no redirects.
    Answer Get(const std::string &url);
    // Plain HTTP to the service's own address.
    Answer Admin(const std::string &path);
    Answer Admin(const std::string &path, const Fields &form);

private:
    Answer Send(const std::string &url, const std::string &authorization,
                const std::function<void(void *curl)> &setUp);

    void *m_curl;
    int m_port;
    std::filesystem::path m_authority;
};

// A temporary folder, deleted with the object.
class TestFolder
{
public:
    TestFolder();
    ~TestFolder();
    const std::filesystem::path &Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

class RunningService
{
public:
    // With a store of its own.
    explicit RunningService(loopback::ServiceOptions options = {});
    // With the store in a folder that outlives it.
    RunningService(loopback::ServiceOptions options, const TestFolder &folder);
    ~RunningService();

    LoopbackClient Client() const { return LoopbackClient(m_service.Port(), m_service.AuthorityFile()); }
    int Port() const { return m_service.Port(); }
    std::filesystem::path Store() const { return m_folder.Path() / "store"; }

private:
    TestFolder m_folder;
    loopback::LoopbackService m_service;
    std::thread m_thread;
};

// The value of the only member of that name in a JSON text, unchanged.
std::string JsonValue(const std::string &json, const std::string &name);
