// Writes a configuration by which one curl process sends the given files to the service as the
// plug-in would: the same fields, each request signed, one after the other over one connection.
//
//     curl_uploads KEY SECRET TOKEN TOKEN-SECRET FILE... > uploads.curl ; curl -K uploads.curl
#include "webclient/OAuthSignature.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

namespace
{
constexpr const char *Address = "https://api.flickr.com/services/upload/";

ParameterList FieldsOf(const std::string &name)
{
    ParameterList fields;
    for (const auto &[field, value] :
         std::initializer_list<std::pair<const char *, std::string>>{{"title", name},
                                                                     {"is_public", "1"},
                                                                     {"is_friend", "0"},
                                                                     {"is_family", "0"},
                                                                     {"safety_level", "1"},
                                                                     {"content_type", "1"},
                                                                     {"hidden", "1"}})
    {
        fields.push_back({field, SecretText(value)});
    }
    return fields;
}

std::string Text(const SecretText &text)
{
    return std::string(text.View());
}

void WriteUpload(const std::string &path, const OAuthIdentity &identity)
{
    const ParameterList fields = FieldsOf(std::filesystem::path(path).filename().string());
    const SecretText authorization =
        ComposeAuthorization("POST", RequestUrl::Parse(Address), identity, OAuthMoment::Now(), fields, {});
    std::string quoted;
    for (const char byte : Text(authorization))
    {
        quoted += byte == '"' ? std::string("\\\"") : std::string(1, byte);
    }
    std::printf("url = \"%s\"\nheader = \"Authorization: %s\"\nheader = \"Expect:\"\noutput = \"/dev/null\"\n",
                Address, quoted.c_str());
    for (const Parameter &field : fields)
    {
        std::printf("form-string = \"%s=%s\"\n", field.name.c_str(), Text(field.value).c_str());
    }
    std::printf("form = \"photo=@%s;type=image/jpeg\"\n", path.c_str());
}
} // namespace

int main(int argc, char **argv)
{
    if (argc < 6)
    {
        std::fprintf(stderr, "usage: curl_uploads KEY SECRET TOKEN TOKEN-SECRET FILE...\n");
        return 2;
    }
    const OAuthIdentity identity{SecretText(argv[1]), SecretText(argv[2]), SecretText(argv[3]),
                                 SecretText(argv[4])};
    for (int i = 5; i < argc; ++i)
    {
        std::fputs(i > 5 ? "next\n" : "", stdout);
        // Options of one transfer; curl forgets them at each "next".
        std::printf("silent\nshow-error\nfail\n");
        if (const char *entries = std::getenv("HALVORA_CONNECT_TO"))
        {
            std::string entry(entries);
            std::printf("connect-to = \"%s\"\n", entry.substr(0, entry.find(';')).c_str());
        }
        if (const char *bundle = std::getenv("HALVORA_CA_FILE"))
        {
            std::printf("cacert = \"%s\"\n", bundle);
        }
        WriteUpload(argv[i], identity);
    }
    return 0;
}
