#include "loopback/LoopbackService.h"

#include "loopback/AccountBook.h"
#include "loopback/AdminService.h"
#include "loopback/Admission.h"
#include "loopback/CertificateAuthority.h"
#include "loopback/ConsentService.h"
#include "loopback/Documents.h"
#include "loopback/FaultQueue.h"
#include "loopback/Gallery.h"
#include "loopback/HttpServer.h"
#include "loopback/MakerEndpoint.h"
#include "loopback/PhotoIndex.h"
#include "loopback/RequestJournal.h"
#include "loopback/RequestTokenBook.h"
#include "loopback/RestService.h"
#include "loopback/ServiceHosts.h"
#include "loopback/TokenService.h"
#include "loopback/UploadService.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <stdexcept>

namespace loopback
{

namespace
{

namespace fs = std::filesystem;

constexpr std::string_view AdminPrefix = "/_loopback/";

std::int64_t Now()
{
    return static_cast<std::int64_t>(std::time(nullptr));
}

fs::path Prepared(const fs::path &store)
{
    fs::create_directories(store);
    fs::permissions(store, fs::perms::owner_all);
    return store;
}

std::pair<std::string, std::string> SplitAt(const std::string &text, char mark)
{
    const auto at = text.find(mark);
    if (at == std::string::npos || at == 0)
    {
        throw std::runtime_error("\"" + text + "\" has no " + mark + " in it");
    }
    return {text.substr(0, at), text.substr(at + 1)};
}

// The value of HALVORA_CONNECT_TO that directs a client's connections to this port.
std::string ConnectToEntries(int port)
{
    std::string entries;
    for (const char *host : {ApiHost, UploadHost, WebHost, MakerHost})
    {
        entries +=
            fmt::format("{0}{1}:443:127.0.0.1:{2};{1}:80:127.0.0.1:{2}", entries.empty() ? "" : ";", host, port);
    }
    return entries;
}

void ThrowIf(const std::optional<std::string> &complaint)
{
    if (complaint)
    {
        throw std::runtime_error(*complaint);
    }
}

} // namespace

struct LoopbackService::Parts
{
    struct Call;
    struct Route;
    class Transaction;

    explicit Parts(const ServiceOptions &options);

    Documents documents;
    // How many seconds the clock of the authorizations is fast.
    std::atomic<std::int64_t> ahead = 0;
    AccountBook accounts;
    PhotoIndex photos;
    RequestTokenBook requestTokens;
    MakerEndpoint maker;
    TokenService tokens;
    ConsentService consent;
    Admission admission;
    UploadService uploads;
    RestService rest;
    FaultQueue faults;
    RequestJournal journal;
    AdminService admin;
    Gallery gallery;
    Certificates certificates;
    HttpServer server;
};

// What an endpoint answers with: the request, and its body as fields or, for an upload, as a form.
struct LoopbackService::Parts::Call
{
    Parts &parts;
    const HttpRequest &request;
    const FormFields &fields;
    UploadForm &form;
};

struct LoopbackService::Parts::Route
{
    std::string_view path;
    // Beside 127.0.0.1 and localhost.
    std::vector<std::string> hosts;
    // What faults call it; null where none can strike.
    const char *faultTarget;
    HttpReply (*answer)(const Call &);

    static const Route &Of(const HttpRequest &request);
};

const LoopbackService::Parts::Route &LoopbackService::Parts::Route::Of(const HttpRequest &request)
{
    static const Route Services[] = {
        {"/services/upload",
         {ApiHost, UploadHost},
         "upload",
         [](const Call &call) { return call.parts.uploads.Handle(call.request, call.form); }},
        {"/services/rest",
         {ApiHost},
         "rest",
         [](const Call &call) { return call.parts.rest.Handle(call.request, call.fields); }},
        {"/services/oauth/request_token",
         {WebHost, ApiHost},
         "oauth",
         [](const Call &call) { return call.parts.tokens.RequestToken(call.request, call.fields); }},
        {"/services/oauth/authorize",
         {WebHost, ApiHost},
         "oauth",
         [](const Call &call) { return call.parts.consent.Handle(call.request, call.fields); }},
        {"/services/oauth/access_token",
         {WebHost, ApiHost},
         "oauth",
         [](const Call &call) { return call.parts.tokens.AccessToken(call.request, call.fields); }},
    };
    static const Route Nowhere{"", {}, nullptr, [](const Call &) {
                                   return HttpReply{404, "text/plain; charset=utf-8", "Nothing is here.\n"};
                               }};
    static const Route Stranger{
        "", {}, nullptr, [](const Call &) {
            return HttpReply{421, "text/plain; charset=utf-8", "The host name is none of this service's.\n"};
        }};
    static const Route Admin{AdminPrefix, {}, nullptr, [](const Call &call) {
                                 const std::string path = call.request.Path().substr(AdminPrefix.size());
                                 return call.parts.admin.Handle(call.request, path, call.fields);
                             }};
    static const Route Maker{
        "", {}, "maker", [](const Call &call) { return call.parts.maker.Handle(call.request); }};
    static const Route Pages{
        "", {}, nullptr, [](const Call &call) { return call.parts.gallery.Handle(call.request); }};

    const std::string host = request.HostName();
    std::string path = request.Path();
    if (path.size() > 1 && path.ends_with('/'))
    {
        path.pop_back();
    }
    const auto *route = std::ranges::find(Services, path, &Route::path);
    if (route != std::end(Services))
    {
        const bool isHere =
            host == "localhost" || host == "127.0.0.1" || std::ranges::count(route->hosts, host) > 0;
        return isHere ? *route : Nowhere;
    }
    return std::ranges::count(KnownHosts, host) == 0 ? Stranger
           : request.target.starts_with(AdminPrefix) ? Admin
           : host == MakerHost                       ? Maker
           : path.starts_with("/services/")          ? Nowhere
                                                     : Pages;
}

// Brings a request to its endpoint, past the fault that strikes it.
class LoopbackService::Parts::Transaction final : public HttpTransaction
{
public:
    Transaction(Parts &parts, const HttpRequest &request)
        : m_parts(parts),
          m_request(request),
          m_route(Route::Of(request)),
          m_form(request.Header("content-type"), parts.uploads.IncomingFolder())
    {
        if (m_route.faultTarget)
        {
            m_fault = parts.faults.Take(m_route.faultTarget);
        }
    }

    bool TakeBody(std::string_view bytes) override
    {
        if (!Pace(bytes.size()))
        {
            Note({.status = 0, .delivery = Delivery::Reset});
            return false;
        }
        m_form.Add(bytes);
        return true;
    }

    HttpReply Answer() override
    {
        const HttpReply reply = Pace(0) ? AnswerWithFault() : HttpReply{.delivery = Delivery::Reset};
        Note(reply);
        return reply;
    }

private:
    bool Has(std::string_view kind) const { return m_fault && m_fault->kind == kind; }

    // Delays or ends the reading of the body as the fault wants it.
    bool Pace(std::size_t count)
    {
        using namespace std::chrono;
        m_read += static_cast<std::int64_t>(count);
        if (Has("cut") && m_read >= m_fault->after)
        {
            return false;
        }
        if (Has("stall") && !m_hasStalled && m_read >= m_fault->after)
        {
            m_hasStalled = true;
            return m_parts.server.Pause(milliseconds(m_fault->milliseconds));
        }
        if (Has("slow"))
        {
            const auto due = m_begin + milliseconds(m_read * 1000 / m_fault->bytesPerSecond);
            const auto early = ceil<milliseconds>(due - steady_clock::now());
            return early.count() <= 0 || m_parts.server.Pause(early);
        }
        return true;
    }

    HttpReply AnswerWithFault()
    {
        const auto answer = m_fault ? FaultAnswer(*m_fault) : std::nullopt;
        if (answer && (Has("status") || Has("error")) && !m_fault->isCarriedOut)
        {
            return *answer;
        }
        HttpReply reply = m_route.answer({m_parts, m_request, m_form.Fields(), m_form});
        if (Has("delay"))
        {
            m_parts.server.Pause(std::chrono::milliseconds(m_fault->milliseconds));
        }
        reply.delivery = Has("no-answer") ? Delivery::Closed : Has("truncated") ? Delivery::Half : Delivery::Whole;
        return answer.value_or(reply);
    }

    void Note(const HttpReply &reply)
    {
        if (m_route.path == AdminPrefix)
        {
            return;
        }
        m_parts.journal.Add({{"secure", m_request.secure},
                             {"http_method", m_request.method},
                             {"host", m_request.host},
                             {"path", m_request.Path()},
                             {"method", RestMethod(m_request, m_form.Fields())},
                             {"user_agent", m_request.Header("user-agent")},
                             {"content_type", m_request.Header("content-type")},
                             {"content_length", m_request.Header("content-length")},
                             {"expect", m_request.Header("expect")},
                             {"fault", m_fault ? m_fault->kind : std::string()},
                             {"status", reply.status},
                             {"answered", reply.delivery == Delivery::Whole}});
    }

    Parts &m_parts;
    const HttpRequest m_request;
    const Route &m_route;
    std::optional<Fault> m_fault;
    UploadForm m_form;
    std::int64_t m_read = 0;
    bool m_hasStalled = false;
    const std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

LoopbackService::Parts::Parts(const ServiceOptions &options)
    : documents(Prepared(options.store) / "index.sqlite"),
      accounts(documents),
      photos(documents),
      requestTokens(documents, [this] { return Now() + ahead; }),
      maker(documents, [this] { return Now() + ahead; }),
      tokens(accounts, requestTokens, Now),
      consent(accounts, requestTokens),
      admission(accounts, Now),
      uploads(options.store, accounts, photos, admission),
      rest(accounts, admission),
      admin({accounts, requestTokens, maker, photos, uploads, faults, journal,
             [this] { return server.SecureConnections(); }, [this](std::int64_t seconds) { ahead += seconds; }}),
      gallery(accounts, photos, uploads),
      certificates(PrepareCertificates(options.store / "ca")),
      server(options.port, certificates.server,
             [this](const HttpRequest &request) { return std::make_unique<Transaction>(*this, request); })
{
    for (const auto &property : options.accountProperties)
    {
        const auto [name, value] = SplitAt(property, '=');
        ThrowIf(accounts.Set(name, value));
    }
    for (const auto &pair : options.tokens)
    {
        const auto [token, secret] = SplitAt(pair, ':');
        accounts.AddToken({token, secret, "write"});
    }
    for (const auto &fault : options.faults)
    {
        ThrowIf(faults.Add(ParseForm(fault)));
    }
}

LoopbackService::LoopbackService(const ServiceOptions &options) : m_parts(std::make_unique<Parts>(options)) {}

LoopbackService::~LoopbackService() = default;

int LoopbackService::Port() const
{
    return m_parts->server.Port();
}

std::filesystem::path LoopbackService::AuthorityFile() const
{
    return fs::absolute(m_parts->certificates.authority);
}

std::string LoopbackService::ClientEnvironment() const
{
    std::string quoted;
    for (const char c : AuthorityFile().string())
    {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return fmt::format("HALVORA_LOOPBACK_PORT={0}\n"
                       "HALVORA_LOOPBACK_GALLERY='http://127.0.0.1:{0}/'\n"
                       "export HALVORA_CONNECT_TO='{1}'\n"
                       "export HALVORA_CA_FILE='{2}'\n",
                       Port(), ConnectToEntries(Port()), quoted);
}

void LoopbackService::Run()
{
    m_parts->server.Run();
}

void LoopbackService::Stop()
{
    m_parts->server.Stop();
}

} // namespace loopback
