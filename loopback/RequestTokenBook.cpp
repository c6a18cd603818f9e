#include "loopback/RequestTokenBook.h"

#include "loopback/Secrets.h"

#include <nlohmann/json.hpp>

namespace loopback
{

namespace
{

constexpr char Collection[] = "request tokens";

}

RequestToken RequestTokenBook::TokenOf(const Json &document) const
{
    RequestToken token{document.at("token"),      document.at("secret"),   document.at("callback"),
                       document.at("permission"), document.at("verifier"), document.at("state"),
                       document.at("expires")};
    if ((token.state == Pending || token.state == Granted) && SecondsLeft(token) <= 0)
    {
        token.state = Expired;
    }
    return token;
}

void RequestTokenBook::Put(const RequestToken &token)
{
    m_documents.Put(Collection, token.token,
                    {{"token", token.token},
                     {"secret", token.secret},
                     {"callback", token.callback},
                     {"permission", token.permission},
                     {"verifier", token.verifier},
                     {"state", token.state},
                     {"expires", token.expires}});
}

RequestToken RequestTokenBook::Add(const std::string &callback)
{
    const RequestToken token{NewToken(), RandomHex(8), callback, "", "", Pending, m_clock() + RequestTokenLife};
    Put(token);
    return token;
}

std::optional<RequestToken> RequestTokenBook::Find(const std::string &token) const
{
    const auto document = m_documents.Find(Collection, token);
    return document ? std::optional(TokenOf(*document)) : std::nullopt;
}

std::vector<RequestToken> RequestTokenBook::All() const
{
    std::vector<RequestToken> tokens;
    for (const auto &document : m_documents.All(Collection))
    {
        tokens.push_back(TokenOf(document));
    }
    return tokens;
}

std::optional<RequestToken> RequestTokenBook::Grant(const std::string &token, const std::string &permission)
{
    const std::lock_guard lock(m_mutex);
    auto found = Find(token);
    if (!found || found->state != Pending)
    {
        return std::nullopt;
    }
    found->state = Granted;
    found->permission = permission;
    found->verifier = RandomHex(8);
    Put(*found);
    return found;
}

bool RequestTokenBook::Deny(const std::string &token)
{
    const std::lock_guard lock(m_mutex);
    auto found = Find(token);
    if (!found || found->state != Pending)
    {
        return false;
    }
    found->state = Denied;
    found->secret.clear();
    Put(*found);
    return true;
}

std::optional<std::string> RequestTokenBook::Use(const std::string &token)
{
    const std::lock_guard lock(m_mutex);
    auto found = Find(token);
    if (!found || found->state != Granted)
    {
        return std::nullopt;
    }
    found->state = Used;
    found->secret.clear();
    found->verifier.clear();
    Put(*found);
    return found->permission;
}

} // namespace loopback
