#include "account/AuthorizationFlow.h"

#include "account/AccountRecord.h"
#include "account/ServiceHosts.h"
#include "account/WebClientFactory.h"
#include "core/ErrorText.h"
#include "com/ModuleLocks.h"
#include "core/VersionBlock.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/FakeWebComponents.h"
#include "tests/doubles/FakeXmlHttp.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <new>

namespace
{
constexpr const WCHAR *TokenReply =
    TEXT("<rsp stat='ok'><oauth><user username='jdoe' fullname='Jane Doe'/></oauth></rsp>");
constexpr const WCHAR *PhotosReply = TEXT("<rsp stat='ok'><user url='https://photos/jdoe/'/></rsp>");
constexpr const WCHAR *ProReply =
    TEXT("<rsp stat='ok'><user ispro='1'><filesize maxbytes='209715200'/></user></rsp>");
constexpr const WCHAR *Refusal = TEXT("<rsp stat='fail'><err code='98' msg='Invalid auth token'/></rsp>");
constexpr const WCHAR *VerifierReply =
    TEXT("<TRNQVerifierExchange><Verifier>the-verifier</Verifier></TRNQVerifierExchange>");

constexpr HRESULT NoClass = REGDB_E_CLASSNOTREG;
const HRESULT NotReached = HRESULT_FROM_WIN32(12029);

// Lines of the record: "consent", "prepare", "open ADDRESS", "lock", "unlock", "completion", and
// "error CAPTION: TEXT".
class FakeInteraction final : public AuthorizationInteraction
{
public:
    explicit FakeInteraction(CallRecord &record) : m_record(record) {}

    int ConsentOutcome = 1;
    int CompletionOutcome = 1;
    std::function<void()> DuringCompletion;

    int AskConsent(HWND parent) override { return Note(parent, "consent", ConsentOutcome); }
    void PrepareCompletion() override { m_record.Add("prepare"); }
    void OpenPage(HWND parent, const WCHAR *address) override { Note(parent, "open " + Narrow(address), 0); }
    void LockForeground(bool isLocked) override { m_record.Add(isLocked ? "lock" : "unlock"); }

    int AskCompletion(HWND parent) override
    {
        Note(parent, "completion", 0);
        if (DuringCompletion)
        {
            DuringCompletion();
        }
        return CompletionOutcome;
    }

    void ShowError(HWND parent, const WCHAR *text, const WCHAR *caption) override
    {
        Note(parent, "error " + Narrow(caption) + ": " + Narrow(text), 0);
    }

    static HWND Parent() { return reinterpret_cast<HWND>(UINT_PTR{0x1234}); }

private:
    int Note(HWND parent, const std::string &line, int outcome)
    {
        EXPECT_EQ(parent, Parent());
        m_record.Add(line);
        return outcome;
    }

    CallRecord &m_record;
};

// An authorization in which everything goes well, until a case spoils something.
struct Attempt
{
    explicit Attempt(bool isAuthorized)
    {
        Http.Answer(VerifierReply);
        Account.UserName = BstrOwner(TEXT("earlier user"));
        if (isAuthorized)
        {
            Account.OAuthToken = BstrOwner(TEXT("old"));
            Account.OAuthTokenSecret = BstrOwner(TEXT("old secret"));
        }
    }

    HRESULT Run()
    {
        for (const WCHAR *const reply : AccountReplies)
        {
            Web.Answer(reply);
        }
        const VersionBlock version;
        const auto client = CreateWebClient(Account, version);
        return Authorize(
            {Account, version, *client.Get(), FakeInteraction::Parent(), Interaction, Wait, Discovery});
    }

    std::string Pair() const
    {
        return Narrow(Account.OAuthToken.View()) + "|" + Narrow(Account.OAuthTokenSecret.View());
    }

    CallRecord Record;
    FakeWebComponents Web;
    FakeXmlHttp Http{Record};
    FakeInteraction Interaction{Record};
    AccountRecord Account;
    Pause Wait = [this](DWORD milliseconds) { Record.Add("wait " + std::to_string(milliseconds)); };
    ProxyDiscovery Discovery = [](const WCHAR *, ProxySetting &) -> DWORD { return 12180; };
    std::array<const WCHAR *, 3> AccountReplies{TokenReply, PhotosReply, ProReply};
};

enum class Pair
{
    Unchanged,
    Empty,
    New
};

enum class Message
{
    None,
    Unreachable,
    AccountUnreadable
};

std::vector<std::string> ExpectedErrors(Message message, HRESULT code)
{
    switch (message)
    {
    case Message::Unreachable:
        return {"Authorization Error: Could not connect to the Flickr authorization server. " +
                Narrow(FormatErrorText(code))};
    case Message::AccountUnreadable:
        return {
            "An error occurred while talking to Flickr: Unknown reply format. Cannot understand server anwser."};
    default:
        return {};
    }
}
} // namespace

TEST(AuthorizationFlow, EndsAsEachOutcomeOfItsStepsSays)
{
    const struct
    {
        const char *name;
        const char *failing; // the operation, or null; by the result, or where that is a success by NoClass
        HRESULT result;
        Pair pair;
        Message message;
        std::function<void(Attempt &)> spoil = [](Attempt &) {};
    } cases[] = {
        {"all is well", nullptr, S_OK, Pair::New, Message::None},
        {"consent refused", nullptr, S_FALSE, Pair::Unchanged, Message::None,
         [](Attempt &a) { a.Interaction.ConsentOutcome = IDCANCEL; }},
        {"any other button goes on", nullptr, S_OK, Pair::New, Message::None,
         [](Attempt &a) { a.Interaction.ConsentOutcome = a.Interaction.CompletionOutcome = -1; }},
        {"no parameters", "Create IRequestParameters", NoClass, Pair::Unchanged, Message::None},
        {"scope not taken", "Add", E_OUTOFMEMORY, Pair::Unchanged, Message::None},
        {"no request token", "GetAuthorizationUrl", NotReached, Pair::Unchanged, Message::Unreachable},
        {"completion refused", nullptr, S_FALSE, Pair::Unchanged, Message::None,
         [](Attempt &a) { a.Interaction.CompletionOutcome = IDCANCEL; }},
        {"no HTTP object", "create plain", NoClass, Pair::Empty, Message::Unreachable,
         [](Attempt &a) { a.Record.FailOperation("create server", E_ACCESSDENIED); }},
        {"no server object", "create server", S_OK, Pair::New, Message::None},
        {"page without a request token", nullptr, E_FAIL, Pair::Empty, Message::Unreachable,
         [](Attempt &a) { a.Web.AuthorizationUrl = TEXT("http://h/?t=1"); }},
        {"open fails", "open", E_INVALIDARG, Pair::Empty, Message::Unreachable},
        {"send fails", "send", NotReached, Pair::Empty, Message::Unreachable},
        {"no reply", "read reply", E_PENDING, Pair::Empty, Message::Unreachable},
        {"a reply without a document", nullptr, E_NOINTERFACE, Pair::Empty, Message::Unreachable,
         [](Attempt &a) { a.Http.Reply = nullptr; }},
        {"not granted in the browser", nullptr, E_FAIL, Pair::Empty, Message::Unreachable,
         [](Attempt &a) { a.Http.Answer(TEXT("<TRNQVerifierExchange/>")); }},
        {"an error page of the endpoint", nullptr, E_FAIL, Pair::Empty, Message::Unreachable,
         [](Attempt &a) { a.Http.Answer(TEXT("<html><body/></html>")); }},
        {"verifier refused", "GetAccessToken", E_ACCESSDENIED, Pair::Empty, Message::Unreachable},
        {"account not reached", "RestRequest", E_FAIL, Pair::New, Message::AccountUnreadable},
        {"new token refused", nullptr, E_FAIL, Pair::New, Message::AccountUnreadable,
         [](Attempt &a) {
             a.AccountReplies = {Refusal, Refusal, Refusal};
         }},
    };
    for (const auto &c : cases)
    {
        for (const bool wasAuthorized : {false, true})
        {
            SCOPED_TRACE(std::string(c.name) + (wasAuthorized ? ", authorized before" : ""));
            const long objects = ModuleLocks::Read();
            {
                Attempt attempt(wasAuthorized);
                const std::string before = attempt.Pair();
                if (c.failing)
                {
                    const HRESULT code = FAILED(c.result) ? c.result : NoClass;
                    attempt.Web.FailOperation(c.failing, code);
                    attempt.Record.FailOperation(c.failing, code);
                }
                c.spoil(attempt);
                EXPECT_EQ(attempt.Run(), c.result);
                EXPECT_EQ(attempt.Pair(), c.pair == Pair::New     ? "access-token|access-secret"
                                          : c.pair == Pair::Empty ? "|"
                                                                  : before);
                EXPECT_EQ(attempt.Account.IsAuthorized(),
                          c.pair == Pair::New || (c.pair == Pair::Unchanged && wasAuthorized));
                EXPECT_EQ(attempt.Record.LinesOf("error "), ExpectedErrors(c.message, c.result));
                EXPECT_EQ(attempt.Record.LinesOf("lock").size(), attempt.Record.LinesOf("unlock").size());
                if (c.result == S_FALSE)
                {
                    const bool isAtOnce = attempt.Record.Lines().size() == 1;
                    EXPECT_EQ(attempt.Record.Lines().back(), isAtOnce ? "consent" : "unlock") << "nothing follows";
                    EXPECT_EQ(attempt.Web.CallsOf("Create IRequestParameters").size(), isAtOnce ? 0u : 1u);
                    EXPECT_EQ(attempt.Web.CallsOf("GetAccessToken").size(), 0u);
                }
            }
            EXPECT_EQ(ModuleLocks::Read(), objects) << "objects left behind";
        }
    }
}

TEST(AuthorizationFlow, TakesItsStepsInOrder)
{
    Attempt attempt(true);
    attempt.Interaction.DuringCompletion = [&] {
        EXPECT_EQ(attempt.Pair(), "old|old secret") << "lost before it must be";
    };
    EXPECT_EQ(attempt.Run(), S_OK);
    EXPECT_EQ(attempt.Record.Lines(),
              (std::vector<std::string>{"consent", "prepare", "open " + Narrow(attempt.Web.AuthorizationUrl),
                                        "wait 3000", "lock", "completion", "unlock", "create server",
                                        "open GET " + Narrow(ServiceHosts::VerifierEndpoint) +
                                            "/?oauth_token=request-token",
                                        "send", "read reply"}));
    EXPECT_EQ(attempt.Web.LinesOf("GetAuthorizationUrl ").at(0), "0 perms=write");
    EXPECT_EQ(attempt.Web.LinesOf("GetAccessToken ").at(0), "0 the-verifier");
    // The client of the call knows the old pair, those that read the account the new one.
    const std::string newPair = "access-token access-secret";
    EXPECT_EQ(attempt.Web.LinesOf("SetAccessToken "),
              (std::vector<std::string>{"old old secret", newPair, newPair}));
    EXPECT_EQ(Narrow(attempt.Account.UserName.View()), "jdoe");
    EXPECT_EQ(Narrow(attempt.Account.AccountType.View()), "Pro");
}

TEST(AuthorizationFlow, LeavesAnEmptyVerifierToTheService)
{
    Attempt attempt(false);
    attempt.Http.Answer(TEXT("<TRNQVerifierExchange><Verifier/></TRNQVerifierExchange>"));
    EXPECT_EQ(attempt.Run(), S_OK);
    EXPECT_EQ(attempt.Web.CallsOf("GetAccessToken").at(0).Arguments[1], "");
}

TEST(AuthorizationFlow, GivesTheForegroundBackIfTheDialogFails)
{
    Attempt attempt(true);
    attempt.Interaction.DuringCompletion = [] { throw std::bad_alloc(); };
    EXPECT_THROW(attempt.Run(), std::bad_alloc);
    EXPECT_EQ(attempt.Record.Lines().back(), "unlock");
    EXPECT_EQ(attempt.Pair(), "old|old secret");
}
