#include "LoopbackClient.h"

#include <curl/curl.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace
{

const std::string Api = "https://api.flickr.com";

std::string Escape(const std::string &text)
{
    char *escaped = curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size()));
    std::string copy = escaped;
    curl_free(escaped);
    return copy;
}

std::string Joined(Fields fields)
{
    for (auto &[name, value] : fields)
    {
        name = Escape(name);
        value = Escape(value);
    }
    std::sort(fields.begin(), fields.end());
    std::string text;
    for (const auto &[name, value] : fields)
    {
        text += (text.empty() ? "" : "&") + name + "=" + value;
    }
    return text;
}

std::size_t Append(char *bytes, std::size_t size, std::size_t count, void *text)
{
    static_cast<std::string *>(text)->append(bytes, size * count);
    return size * count;
}

// The value of the Authorization header.
std::string Signed(const std::string &url, const Fields &parameters)
{
    static int count = 0;
    Fields oauth = {{"oauth_consumer_key", "68616c766f72612d64656d6f2d6b6579"},
                    {"oauth_nonce", "nonce-" + std::to_string(++count)},
                    {"oauth_signature_method", "HMAC-SHA1"},
                    {"oauth_timestamp", std::to_string(std::time(nullptr))},
                    {"oauth_token", "72157600000000000-demo000000000000"}};
    Fields all = oauth;
    all.insert(all.end(), parameters.begin(), parameters.end());
    const std::string base = "POST&" + Escape(url) + "&" + Escape(Joined(all));
    const std::string key = "64656d6f2d736563&demosecret000000";
    unsigned char mac[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char *>(base.data()), base.size(), mac, &size);
    unsigned char text[64];
    EVP_EncodeBlock(text, mac, static_cast<int>(size));
    oauth.emplace_back("oauth_signature", reinterpret_cast<char *>(text));
    std::string header = "OAuth realm=\"\"";
    for (const auto &[name, value] : oauth)
    {
        header += ", " + name + "=\"" + Escape(value) + "\"";
    }
    return header;
}

loopback::ServiceOptions In(loopback::ServiceOptions options, const std::filesystem::path &store)
{
    options.store = store;
    return options;
}

} // namespace

LoopbackClient::LoopbackClient(int port, std::filesystem::path authority)
    : m_curl(curl_easy_init()), m_port(port), m_authority(std::move(authority))
{
}

LoopbackClient::~LoopbackClient()
{
    curl_easy_cleanup(m_curl);
}

Answer LoopbackClient::Send(const std::string &url, const std::string &authorization,
                            const std::function<void(void *)> &setUp)
{
    Answer answer;
    curl_easy_reset(m_curl);
    curl_slist *connect = curl_slist_append(nullptr, ("::127.0.0.1:" + std::to_string(m_port)).c_str());
    curl_slist *headers = curl_slist_append(nullptr, "Expect:");
    if (!authorization.empty())
    {
        headers = curl_slist_append(headers, ("Authorization: " + authorization).c_str());
    }
    curl_easy_setopt(m_curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(m_curl, CURLOPT_CONNECT_TO, connect);
    curl_easy_setopt(m_curl, CURLOPT_CAINFO, m_authority.c_str());
    curl_easy_setopt(m_curl, CURLOPT_USERAGENT, "Halvora/1.2.3.4");
    curl_easy_setopt(m_curl, CURLOPT_TIMEOUT, 60L);
    curl_easy_setopt(m_curl, CURLOPT_WRITEFUNCTION, Append);
    curl_easy_setopt(m_curl, CURLOPT_WRITEDATA, &answer.body);
    setUp(m_curl);
    curl_easy_setopt(m_curl, CURLOPT_HTTPHEADER, headers);
    answer.result = curl_easy_perform(m_curl);
    curl_easy_getinfo(m_curl, CURLINFO_RESPONSE_CODE, &answer.status);
    char *type = nullptr;
    curl_easy_getinfo(m_curl, CURLINFO_CONTENT_TYPE, &type);
    answer.contentType = type ? type : "";
    curl_slist_free_all(headers);
    curl_slist_free_all(connect);
    return answer;
}

Answer LoopbackClient::Rest(const std::string &method)
{
    const Fields fields = {{"method", method}};
    const std::string url = Api + "/services/rest";
    return Send(url, Signed(url, fields),
                [&](void *curl) { curl_easy_setopt(curl, CURLOPT_COPYPOSTFIELDS, Joined(fields).c_str()); });
}

Answer LoopbackClient::Upload(const Fields &fields, const UploadFile &file)
{
    const std::string url = Api + "/services/upload/";
    curl_mime *form = curl_mime_init(m_curl);
    for (const auto &[name, value] : fields)
    {
        curl_mimepart *part = curl_mime_addpart(form);
        curl_mime_name(part, name.c_str());
        curl_mime_data(part, value.data(), value.size());
    }
    curl_mimepart *part = curl_mime_addpart(form);
    curl_mime_name(part, "photo");
    curl_mime_filename(part, file.name.c_str());
    curl_mime_type(part, file.type.c_str());
    curl_mime_data(part, file.bytes.data(), file.bytes.size());
    const Answer answer =
        Send(url, Signed(url, fields), [&](void *curl) { curl_easy_setopt(curl, CURLOPT_MIMEPOST, form); });
    curl_easy_reset(m_curl);
    curl_mime_free(form);
    return answer;
}

Answer LoopbackClient::Get(const std::string &url)
{
    return Send(url, "", [](void *) {});
}

Answer LoopbackClient::Admin(const std::string &path)
{
    return Get("http://127.0.0.1/_loopback/" + path);
}

Answer LoopbackClient::Admin(const std::string &path, const Fields &form)
{
    return Send("http://127.0.0.1/_loopback/" + path, "",
                [&](void *curl) { curl_easy_setopt(curl, CURLOPT_COPYPOSTFIELDS, Joined(form).c_str()); });
}

TestFolder::TestFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "loopback-test-XXXXXX").string();
    if (!mkdtemp(name.data()))
    {
        std::abort();
    }
    m_path = name;
}

TestFolder::~TestFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

RunningService::RunningService(loopback::ServiceOptions options)
    : m_service(In(std::move(options), m_folder.Path() / "store")), m_thread([this] { m_service.Run(); })
{
}

RunningService::RunningService(loopback::ServiceOptions options, const TestFolder &folder)
    : m_service(In(std::move(options), folder.Path() / "store")), m_thread([this] { m_service.Run(); })
{
}

RunningService::~RunningService()
{
    m_service.Stop();
    m_thread.join();
}

std::string JsonValue(const std::string &json, const std::string &name)
{
    const std::string key = "\"" + name + "\": ";
    const auto at = json.find(key);
    if (at == std::string::npos || json.find(key, at + 1) != std::string::npos)
    {
        return "(not once)";
    }
    // Every member ends a line or the object.
    const auto begin = at + key.size();
    std::string value = json.substr(begin, json.find_first_of("\n}", begin) - begin);
    if (value.ends_with(','))
    {
        value.pop_back();
    }
    return value;
}
