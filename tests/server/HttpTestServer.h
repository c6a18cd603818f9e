// An HTTP server on 127.0.0.1, with TLS or plain, that keeps a record of what reached it, and that a
// test can make misbehave. Each connection is a thread that runs the test's script.
#pragma once

#include "tests/server/TestCertificates.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

struct ssl_ctx_st;
struct ssl_st;

struct SeenRequest
{
    int connection = 0; // counted from 1
    std::string line;   // "POST /path HTTP/1.1"
    std::string headers;
    std::string body; // the first megabyte
    unsigned long long bodyBytes = 0;

    // The value of a header, by its name in lower case; "(none)" if it isn't there.
    std::string Header(const std::string &name) const;
};

class HttpTestServer;

// What a script can do on its connection.
class Conversation
{
public:
    Conversation(HttpTestServer &server, ssl_st *tls, int socket, int number)
        : m_server(server), m_tls(tls), m_socket(socket), m_number(number)
    {
    }

    int Number() const { return m_number; }

    // A whole request, recorded; nothing when the peer has closed.
    std::optional<SeenRequest> ReadRequest();
    // The head alone: the body stays unread.
    std::optional<SeenRequest> ReadHead();

    void Write(const std::string &text);
    void WriteReply(int status, const std::string &words, const std::string &body,
                    const std::string &headers = "Content-Type: text/xml\r\n");

    // Blocks until the peer closes the connection or the server ends.
    void WaitForEnd();

    // Carries bytes between a plain connection and a port of 127.0.0.1, until one of both is closed.
    void Relay(unsigned port);

private:
    bool Fill();
    int Read(char *buffer, int size);
    void ReadBody(SeenRequest &request, unsigned long long length);

    HttpTestServer &m_server;
    ssl_st *m_tls; // null on a plain connection
    int m_socket;
    int m_number;
    std::string m_ahead; // read and not used yet
};

class HttpTestServer
{
public:
    using Script = std::function<void(Conversation &)>;

    // Plain, and with TLS.
    explicit HttpTestServer(Script script);
    explicit HttpTestServer(const IssuedCertificate &certificate, Script script = AnswerAll);
    ~HttpTestServer();

    // Answers each request with a success.
    static void AnswerAll(Conversation &conversation);
    static constexpr const char *Success = "<rsp stat=\"ok\"><photoid>17</photoid></rsp>";

    // Refuses every further connection.
    void StopListening();

    unsigned Port() const { return m_port; }
    std::vector<SeenRequest> Requests();
    int Connections() const { return m_connections; }
    int ResumedSessions() const { return m_resumed; }

private:
    friend class Conversation;

    void Accept();
    void Serve(int socket, int number);
    void Record(const SeenRequest &request);

    // What is kept ends with the server, which sees Keep refuse what comes later.
    bool Keep(int socket);
    void Close(int socket);

    void Start();

    std::shared_ptr<ssl_ctx_st> m_context; // null: plain
    Script m_script;
    int m_listener = -1;
    unsigned m_port = 0;
    std::atomic<int> m_connections{0};
    std::atomic<int> m_resumed{0};
    std::atomic<bool> m_isEnding{false};
    std::mutex m_lock;
    std::set<int> m_open;
    std::vector<SeenRequest> m_requests;
    std::vector<std::thread> m_threads; // of the connections; the acceptor's alone until it ends
    std::thread m_acceptor;
};
