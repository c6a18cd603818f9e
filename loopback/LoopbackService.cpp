#include "loopback/LoopbackService.h"

#include "loopback/AccountBook.h"
#include "loopback/AdminService.h"
#include "loopback/Admission.h"
#include "loopback/CertificateAuthority.h"
#include "loopback/ConsentService.h"
#include "database/Database.h"
#include "loopback/FaultQueue.h"
#include "loopback/FaultyExchange.h"
#include "loopback/Gallery.h"
#include "loopback/MakerEndpoint.h"
#include "loopback/PhotoIndex.h"
#include "loopback/RequestJournal.h"
#include "loopback/RequestTokenBook.h"
#include "loopback/RestService.h"
#include "loopback/ServiceHosts.h"
#include "loopback/StoreLock.h"
#include "loopback/TokenService.h"
#include "loopback/UploadService.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <stdexcept>

namespace loopback
{

namespace
{

namespace fs = std::filesystem;

constexpr std::string_view AdminPrefix = "/_loopback/";

// The endpoint that a request addresses.
enum class Endpoint
{
    Nowhere,
    Upload,
    Rest,
    RequestToken,
    Consent,
    AccessToken,
    Maker,
    Admin,
    Gallery
};

std::string WithoutClosingSlash(std::string path)
{
    return path.size() > 1 && path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
}

Endpoint EndpointFor(const HttpRequest &request)
{
    const std::string host = request.HostName();
    const std::string path = WithoutClosingSlash(request.Path());
    const bool isLocal = host == "localhost" || host == "127.0.0.1";
    if (path == "/services/upload")
    {
        return isLocal || host == ApiHost() || host == UploadHost() ? Endpoint::Upload : Endpoint::Nowhere;
    }
    if (path == "/services/rest")
    {
        return isLocal || host == ApiHost() ? Endpoint::Rest : Endpoint::Nowhere;
    }
    if (path.starts_with("/services/oauth/"))
    {
        const bool isHere = isLocal || host == WebHost() || host == ApiHost();
        return !isHere                                   ? Endpoint::Nowhere
               : path == "/services/oauth/request_token" ? Endpoint::RequestToken
               : path == "/services/oauth/authorize"     ? Endpoint::Consent
               : path == "/services/oauth/access_token"  ? Endpoint::AccessToken
                                                         : Endpoint::Nowhere;
    }
    if (request.target.starts_with(AdminPrefix))
    {
        return Endpoint::Admin;
    }
    if (host == MakerHost())
    {
        return Endpoint::Maker;
    }
    return path.starts_with("/services/") ? Endpoint::Nowhere : Endpoint::Gallery;
}

const char *FaultTarget(Endpoint endpoint)
{
    switch (endpoint)
    {
    case Endpoint::Upload:
        return "upload";
    case Endpoint::Rest:
        return "rest";
    case Endpoint::RequestToken:
    case Endpoint::Consent:
    case Endpoint::AccessToken:
        return "oauth";
    case Endpoint::Maker:
        return "maker";
    default:
        return nullptr;
    }
}

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

} // namespace

struct LoopbackService::Parts
{
    explicit Parts(const ServiceOptions &options)
        : lock(Prepared(options.store)),
          database(options.store / "index.sqlite"),
          accounts(database),
          photos(database),
          requestTokens(database, Now, [this] { return accounts.Get().requestTokenLife; }),
          maker(database, Now, [this] { return accounts.Get().requestTokenLife; }),
          tokens(accounts, requestTokens, Now),
          consent(accounts, requestTokens),
          admission(accounts, Now),
          uploads(options.store, accounts, photos, admission),
          rest(accounts, photos, admission),
          admin(accounts, requestTokens, maker, photos, uploads, faults, journal,
                [this] { return server.Counts(); }),
          gallery(accounts, photos, uploads),
          certificates(
              PrepareCertificates(options.certificates.empty() ? options.store / "ca" : options.certificates)),
          server(certificates.serverChain, certificates.serverKey,
                 [this](HttpExchange &exchange) { return Answer(exchange); })
    {
        Apply(options);
        port = server.Bind(options.port);
    }

    void Apply(const ServiceOptions &options)
    {
        for (const auto &property : options.accountProperties)
        {
            const auto [name, value] = SplitAt(property, '=');
            if (const auto complaint = accounts.Set(name, value))
            {
                throw std::runtime_error(*complaint);
            }
        }
        for (const auto &pair : options.tokens)
        {
            const auto [token, secret] = SplitAt(pair, ':');
            accounts.AddToken({token, secret, "write"});
        }
        for (const auto &pair : options.consumers)
        {
            const auto [key, secret] = SplitAt(pair, ':');
            const auto mark = std::min(secret.find(':'), secret.size());
            accounts.AddConsumer(key, secret.substr(0, mark), secret.substr(std::min(mark + 1, secret.size())));
        }
        for (const auto &text : options.faults)
        {
            Fault fault;
            if (const auto complaint = ReadFault(ParseForm(text), fault))
            {
                throw std::runtime_error(*complaint);
            }
            faults.Add(fault);
        }
    }

    HttpReply Answer(HttpExchange &exchange)
    {
        const HttpRequest &request = exchange.Request();
        if (!IsKnownHost(request.HostName()))
        {
            return {421, "text/plain; charset=utf-8", "The host name is none of this service's.\n"};
        }
        const Endpoint endpoint = EndpointFor(request);
        JournalEntry entry{request.connection,
                           request.secure,
                           request.method,
                           request.host,
                           request.Path(),
                           "",
                           request.Header("user-agent"),
                           request.Header("content-type"),
                           request.Header("content-length"),
                           request.Header("expect")};
        HttpReply reply = AnswerWithFaults(exchange, endpoint, entry);
        if (endpoint != Endpoint::Admin)
        {
            entry.status = reply.status;
            journal.Add(entry);
        }
        return reply;
    }

    HttpReply AnswerWithFaults(HttpExchange &exchange, Endpoint endpoint, JournalEntry &entry)
    {
        const char *target = FaultTarget(endpoint);
        const auto fault = target ? faults.Take(target) : std::nullopt;
        entry.answered = true;
        if (!fault)
        {
            return AnswerIn(endpoint, exchange, entry);
        }
        entry.fault = FaultName(fault->kind);
        entry.answered = fault->kind != FaultKind::Cut && fault->kind != FaultKind::NoAnswer &&
                         fault->kind != FaultKind::Truncated;
        FaultyExchange faulty(exchange, *fault);
        const auto answer = FaultAnswer(*fault);
        const bool isRefusal = fault->kind == FaultKind::Status || fault->kind == FaultKind::Error;
        if (answer && isRefusal && !fault->isCarriedOut)
        {
            return *answer;
        }
        HttpReply reply = AnswerIn(endpoint, faulty, entry);
        if (fault->kind == FaultKind::Delay)
        {
            exchange.Pause(std::chrono::milliseconds(fault->milliseconds));
        }
        else if (fault->kind == FaultKind::NoAnswer)
        {
            exchange.Drop(ConnectionEnd::Closed);
        }
        reply.cutInBody = fault->kind == FaultKind::Truncated;
        return answer.value_or(reply);
    }

    HttpReply AnswerIn(Endpoint endpoint, HttpExchange &exchange, JournalEntry &entry)
    {
        switch (endpoint)
        {
        case Endpoint::Upload:
            return uploads.Handle(exchange);
        case Endpoint::Rest:
        {
            RestReply answer = rest.Handle(exchange);
            entry.apiMethod = answer.method;
            return answer.reply;
        }
        case Endpoint::RequestToken:
            return tokens.RequestToken(exchange);
        case Endpoint::Consent:
            return consent.Handle(exchange);
        case Endpoint::AccessToken:
            return tokens.AccessToken(exchange);
        case Endpoint::Maker:
            return maker.Handle(exchange.Request());
        case Endpoint::Admin:
            return admin.Handle(exchange, exchange.Request().Path().substr(AdminPrefix.size()));
        case Endpoint::Gallery:
            return gallery.Handle(exchange.Request());
        case Endpoint::Nowhere:
            break;
        }
        return {404, "text/plain; charset=utf-8", "Nothing is here.\n"};
    }

    StoreLock lock;
    Database database;
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
    CertificateFiles certificates;
    HttpServer server;
    int port = 0;
};

LoopbackService::LoopbackService(const ServiceOptions &options) : m_parts(std::make_unique<Parts>(options)) {}

LoopbackService::~LoopbackService() = default;

int LoopbackService::Port() const
{
    return m_parts->port;
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
