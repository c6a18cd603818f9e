// No token is left in memory that was freed.
#include "com/BstrOwner.h"
#include "tests/webclient/ScriptedStream.h"
#include "webclient/OAuthWebClient.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

namespace
{
// Parts of the four secrets, which say where one was left. Only while this is set is freed memory searched.
constexpr const char *Needles[] = {"RequestTokenTail", "RequestSecretTail", "AccessTokenTail", "AccessSecretTail"};
std::atomic<bool> isSearching{false};
std::atomic<int> leftOvers[std::size(Needles)];

void Search(const unsigned char *memory, size_t size) noexcept
{
    for (size_t i = 0; i < std::size(Needles); ++i)
    {
        const std::string_view needle = Needles[i];
        for (const size_t step : {1u, 2u}) // UTF-8, UTF-16
        {
            for (size_t at = 0; at + needle.size() * step <= size; ++at)
            {
                size_t same = 0;
                while (same < needle.size() &&
                       memory[at + same * step] == static_cast<unsigned char>(needle[same]))
                {
                    ++same;
                }
                leftOvers[i] += same == needle.size() ? 1 : 0;
            }
        }
    }
}

constexpr size_t Head = alignof(std::max_align_t);
} // namespace

// Each block begins with its size.
void *operator new(size_t size)
{
    auto *block = static_cast<unsigned char *>(std::malloc(size + Head));
    if (block == nullptr)
    {
        throw std::bad_alloc();
    }
    *reinterpret_cast<size_t *>(block) = size;
    return block + Head;
}

void operator delete(void *memory) noexcept
{
    if (memory != nullptr)
    {
        unsigned char *block = static_cast<unsigned char *>(memory) - Head;
        if (isSearching)
        {
            Search(block + Head, *reinterpret_cast<size_t *>(block));
        }
        std::free(block);
    }
}

void operator delete(void *memory, size_t) noexcept
{
    ::operator delete(memory);
}

namespace
{
class TokenTransport final : public HttpTransport
{
public:
    HttpReply Exchange(const HttpRequest &request) override
    {
        return {200, "OK",
                request.url.ends_with("/request_token")
                    ? "oauth_token=1-RequestTokenTail&oauth_token_secret=2-RequestSecretTail"
                : request.url.ends_with("/access_token")
                    ? "oauth_token=3-AccessTokenTail&oauth_token_secret=4-AccessSecretTail"
                    : "<rsp stat='ok'/>"};
    }
};

TEST(SecretsInMemory, NoTokenIsLeftWhereItWasFreed)
{
    const auto transport = std::make_shared<TokenTransport>();
    auto client = COAuthWebClient::Make(transport);
    ASSERT_EQ(client->SetService(TEXT("A"), TEXT("https://api.flickr.com/"), TEXT("HMAC-SHA1"), TEXT("key"),
                                 TEXT("secret"), TEXT("https://www.flickr.com/request_token"),
                                 TEXT("https://www.flickr.com/authorize"),
                                 TEXT("https://www.flickr.com/access_token"), TEXT("https://flickr.com/"), 0),
              S_OK);
    BstrOwner url, token, secret, other;
    isSearching = true;
    EXPECT_EQ(client->GetAuthorizationUrl(0, nullptr, url.Put()), S_OK);
    EXPECT_EQ(client->GetAccessToken(0, TEXT("verifier"), token.Put(), secret.Put()), S_OK);
    EXPECT_EQ(client->SetAccessToken(token.Text(), secret.Text()), S_OK);
    ComPtr<IUnknown> reply;
    EXPECT_EQ(client->RestRequest(nullptr, TEXT("POST"), nullptr, nullptr, 0, reply.Put()), S_OK);
    client.Reset();
    isSearching = false;
    for (size_t i = 0; i < std::size(Needles); ++i)
    {
        EXPECT_EQ(leftOvers[i].exchange(0), 0) << Needles[i];
    }

    // What is searched for is found.
    isSearching = true;
    static_cast<void>(std::string(url.View().begin(), url.View().end()));
    static_cast<void>(WideText(token.View()));
    isSearching = false;
    EXPECT_GE(leftOvers[0].exchange(0), 1);
    EXPECT_GE(leftOvers[2].exchange(0), 1);
}
} // namespace
