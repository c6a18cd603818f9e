// What transport tests of both builds talk to: a proxy on 127.0.0.1 behind which each host of
// "server.test" behaves in one way of its own. A program, since its TLS is of this system and not of
// Windows.
//
//     http-test-server FOLDER [HOST=PORT]...
//
// When it listens, FOLDER holds "ca.pem", the authority that it is trusted by, and "port". A HOST of the
// arguments leads to that port of 127.0.0.1. It ends with its standard input.
#include "tests/server/HttpTestServer.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

namespace
{
std::atomic<int> cutRequests{0};

std::string Reply(const std::string &head, const std::string &body)
{
    return "HTTP/1.1 " + head + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

// Reads one request, does this and leaves.
HttpTestServer::Script Once(std::function<void(Conversation &)> deed)
{
    return [deed](Conversation &conversation) {
        if (conversation.ReadRequest())
        {
            deed(conversation);
        }
    };
}

HttpTestServer::Script Saying(const std::string &text)
{
    return Once([text](Conversation &conversation) { conversation.Write(text); });
}

// Answers each request of a connection.
HttpTestServer::Script Each(std::function<void(Conversation &, const SeenRequest &)> answer)
{
    return [answer](Conversation &conversation) {
        while (const auto request = conversation.ReadRequest())
        {
            answer(conversation, *request);
        }
    };
}

void AnswerLate(Conversation &conversation)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    conversation.WriteReply(200, "OK", "at last");
}

// Says at once that the answer will come.
void AnswerInterim(Conversation &conversation)
{
    for (const char *interim : {"100 Continue", "102 Processing", "103 Early Hints"})
    {
        conversation.Write(std::string("HTTP/1.1 ") + interim + "\r\n\r\n");
    }
    AnswerLate(conversation);
}

// Never stands still, and never comes to an end.
void AnswerInDrops(Conversation &conversation)
{
    conversation.Write("HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n");
    for (int i = 0; i < 40; ++i)
    {
        conversation.Write(".");
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}

class Proxy
{
public:
    Proxy()
    {
        // Takes all and leaves without a word.
        const HttpTestServer::Script cut = Once([](Conversation &) { ++cutRequests; });
        const IssuedCertificate usual = m_authority.Issue("DNS:*.server.test");
        const std::pair<const char *, HttpTestServer::Script> scripts[] = {
            {"echo", Each([](Conversation &conversation, const SeenRequest &request) {
                 const std::string all = request.line + "\r\n" + request.headers + "\r\n" + request.body;
                 conversation.WriteReply(200, "Fine", all);
             })},
            {"measure", Each([](Conversation &conversation, const SeenRequest &request) {
                 conversation.WriteReply(200, "OK", std::to_string(request.bodyBytes));
             })},
            {"refuse", Saying(Reply("500 Out Of Order\r\nRetry-After: 120", "try tomorrow"))},
            {"redirect",
             Saying(Reply("302 Found\r\nLocation: https://echo.server.test/elsewhere\r\nSet-Cookie: a=b", ""))},
            {"challenge", Each([](Conversation &conversation, const SeenRequest &) {
                 ++cutRequests;
                 conversation.WriteReply(401, "Unauthorized", "who?", "WWW-Authenticate: NTLM\r\n");
             })},
            {"cut", cut},
            {"cut-head", [](Conversation &conversation) { cutRequests += conversation.ReadHead() ? 1 : 0; }},
            {"count", Once([](Conversation &conversation) {
                 conversation.WriteReply(200, "OK", std::to_string(cutRequests.exchange(0)));
             })},
            {"deaf",
             [](Conversation &conversation) {
                 conversation.ReadHead();
                 conversation.WaitForEnd();
             }},
            {"mute", Once([](Conversation &conversation) { conversation.WaitForEnd(); })},
            {"late", Once(AnswerLate)},
            {"half", Saying("HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n<rsp stat=\"ok\">")},
            {"huge", Saying(Reply("200 OK", std::string(300'000, 'x')))},
            {"nonsense", Saying("what do you want?\r\n\r\n")},
            {"interim", Once(AnswerInterim)},
            {"drops", Once(AnswerInDrops)}};
        for (const auto &[name, script] : scripts)
        {
            Add(name, usual, script);
        }
        Add("expired", m_authority.Issue("DNS:expired.server.test", -20, -10), cut);
        Add("other", m_authority.Issue("DNS:somebody.else.test"), cut);
        Add("stranger", TestAuthority("Another authority").Issue("DNS:stranger.server.test"), cut);
    }

    void Lead(std::string host, unsigned port) { m_ports[std::move(host)] = port; }
    void SaveAuthority(const std::string &path) const { m_authority.Save(path); }

    // As a proxy does; a host that it doesn't know is like one that refuses connections, to "locked" it leads
    // nobody, and on "tarpit" it thinks for ever.
    void Serve(Conversation &conversation) const
    {
        const auto request = conversation.ReadHead();
        if (!request || !request->line.starts_with("CONNECT "))
        {
            return;
        }
        const std::string host = request->line.substr(8, request->line.find(':') - 8);
        if (host == "locked.server.test")
        {
            conversation.WriteReply(407, "Proxy Authentication Required", "",
                                    "Proxy-Authenticate: Basic realm=\"here\"\r\n");
            return;
        }
        if (host == "tarpit.server.test")
        {
            conversation.WaitForEnd();
        }
        const auto port = m_ports.find(host);
        if (port != m_ports.end())
        {
            conversation.Write("HTTP/1.1 200 OK\r\n\r\n");
            conversation.Relay(port->second);
        }
    }

private:
    void Add(const std::string &name, const IssuedCertificate &certificate, HttpTestServer::Script script)
    {
        m_servers.push_back(std::make_unique<HttpTestServer>(certificate, std::move(script)));
        Lead(name + ".server.test", m_servers.back()->Port());
    }

    TestAuthority m_authority;
    std::vector<std::unique_ptr<HttpTestServer>> m_servers;
    std::map<std::string, unsigned> m_ports;
};
} // namespace

int main(int count, char **arguments)
{
    if (count < 2)
    {
        std::cerr << "http-test-server FOLDER [HOST=PORT]...\n";
        return 2;
    }
    const std::string folder = arguments[1];
    Proxy proxy;
    for (int i = 2; i < count; ++i)
    {
        const std::string lead = arguments[i];
        const size_t equals = lead.find('=');
        proxy.Lead(lead.substr(0, equals), static_cast<unsigned>(std::stoul(lead.substr(equals + 1))));
    }
    const HttpTestServer front([&proxy](Conversation &conversation) { proxy.Serve(conversation); });
    proxy.SaveAuthority(folder + "/ca.pem");
    std::ofstream(folder + "/port.new") << front.Port() << '\n';
    std::filesystem::rename(folder + "/port.new", folder + "/port");
    while (std::cin.get() != EOF)
    {
    }
    return 0;
}
