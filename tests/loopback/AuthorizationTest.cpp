// The whole authorization, step by step as an application and a browser perform it, and every way in
// which it ends early.
#include "LoopbackClient.h"

#include "loopback/AccountBook.h"
#include "loopback/FormFields.h"
#include "loopback/RequestTokenBook.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

const std::string Steps = "https://www.flickr.com/services/oauth/";
const std::string MakerCallback = "http://authorization.halvora.example/flickr/authorization/";
const std::string MakerExchange = "https://authorization.halvora.example/flickr/authorization/?oauth_token=";

std::string FieldOf(const std::string &form, const char *name)
{
    return loopback::FindField(loopback::ParseForm(form), name).value_or("");
}

// The value of a hidden field of a page.
std::string HiddenField(const std::string &html, const std::string &name)
{
    const std::string mark = "name=\"" + name + "\" value=\"";
    const auto begin = html.find(mark);
    return begin == std::string::npos
               ? ""
               : html.substr(begin + mark.size(), html.find('"', begin + mark.size()) - begin - mark.size());
}

Signature Application()
{
    Signature signature;
    signature.token = "";
    signature.tokenSecret = "";
    return signature;
}

Signature ForToken(const std::string &form, const std::string &verifier)
{
    Signature signature;
    signature.token = FieldOf(form, "oauth_token");
    signature.tokenSecret = FieldOf(form, "oauth_token_secret");
    signature.further = {{"oauth_verifier", verifier}};
    return signature;
}

struct Attempt
{
    RunningService service;
    LoopbackClient client = service.Client();

    // The form with the request token.
    std::string AskForToken(const std::string &callback = MakerCallback)
    {
        Signature signature = Application();
        signature.further = {{"oauth_callback", callback}};
        const Answer answer = client.Signed(Steps + "request_token", signature);
        EXPECT_EQ(answer.status, 200) << answer.body;
        EXPECT_EQ(FieldOf(answer.body, "oauth_callback_confirmed"), "true");
        return answer.body;
    }

    std::string PageAddress(const std::string &form, const std::string &permission = "write")
    {
        return Steps + "authorize?perms=" + permission + "&oauth_token=" + FieldOf(form, "oauth_token");
    }

    // Sends the form as the user's browser does, after `spoil` has changed its fields.
    Answer Decide(
        const std::string &form, const std::string &decision, const std::string &permission = "write",
        const std::function<void(Fields &)> &spoil = [](Fields &) {})
    {
        const Answer page = client.Get(PageAddress(form, permission));
        const std::string cookie = page.headers.at("set-cookie");
        Fields fields = {{"decision", decision}, {"user", "halvora-demo"}};
        for (const char *name : {"oauth_token", "perms", "form_key"})
        {
            fields.emplace_back(name, HiddenField(page.body, name));
        }
        spoil(fields);
        return client.Post(Steps + "authorize", fields, "Cookie: a=b; " + cookie.substr(0, cookie.find(';')));
    }

    std::string Verifier(const std::string &form)
    {
        const Answer answer = Decide(form, "allow");
        EXPECT_EQ(answer.status, 302);
        return FieldOf(answer.headers.at("location"), "oauth_verifier");
    }

    Answer Trade(const std::string &form, const std::string &verifier)
    {
        return client.Signed(Steps + "access_token", ForToken(form, verifier));
    }

    std::string State() { return JsonValue(client.Admin("authorizations").body, "state"); }
};

} // namespace

TEST(Authorization, LeadsFromTheApplicationOverTheBrowserToATokenThatPublishes)
{
    Attempt attempt;
    const std::string form = attempt.AskForToken();
    const std::string token = FieldOf(form, "oauth_token");
    const Answer page = attempt.client.Get(attempt.PageAddress(form));
    EXPECT_EQ(page.status, 200);
    EXPECT_THAT(page.body,
                AllOf(HasSubstr("May Halvora upload photos to your account?"), HasSubstr("Ada Lovelace"),
                      HasSubstr("authorization.halvora.example"), Not(HasSubstr("<script"))));
    EXPECT_THAT(page.headers.at("content-security-policy"),
                AllOf(HasSubstr("default-src 'none'"), HasSubstr("frame-ancestors 'none'"),
                      HasSubstr("form-action 'self' http://authorization.halvora.example")));
    EXPECT_THAT(page.headers.at("set-cookie"),
                AllOf(HasSubstr("HttpOnly"), HasSubstr("SameSite"), HasSubstr("Secure")));

    const Answer granted = attempt.Decide(form, "allow");
    ASSERT_EQ(granted.status, 302);
    const std::string callback = granted.headers.at("location");
    EXPECT_THAT(callback, StartsWith(MakerCallback + "?oauth_token=" + token + "&oauth_verifier="));
    const std::string verifier = FieldOf(callback, "oauth_verifier");

    EXPECT_EQ(attempt.client.Get(MakerExchange + token).status, 404) << "the browser isn't there yet";
    const Answer arrival = attempt.client.Get(callback);
    EXPECT_EQ(arrival.status, 303);
    EXPECT_THAT(arrival.headers.at("location"), Not(HasSubstr(verifier)));
    EXPECT_THAT(attempt.client.Get("http://authorization.halvora.example" + arrival.headers.at("location")).body,
                HasSubstr("You can return to Halvora now"));

    const Answer exchange = attempt.client.Get(MakerExchange + token);
    EXPECT_THAT(exchange.contentType, StartsWith("text/xml"));
    EXPECT_THAT(exchange.body,
                AllOf(HasSubstr("<TRNQVerifierExchange>"), HasSubstr("<Verifier>" + verifier + "</Verifier>")));
    // Only once, even if the browser loads the page again.
    attempt.client.Get(callback);
    EXPECT_THAT(attempt.client.Get(MakerExchange + token).body,
                AllOf(HasSubstr("<TRNQVerifierExchange>"), Not(HasSubstr("Verifier>" + verifier))));

    const Answer pair = attempt.Trade(form, verifier);
    ASSERT_EQ(pair.status, 200) << pair.body;
    EXPECT_EQ(FieldOf(pair.body, "username"), "halvora-demo");
    EXPECT_EQ(FieldOf(pair.body, "fullname"), "Ada Lovelace");
    Signature signature = ForToken(pair.body, "");
    signature.further.clear();
    EXPECT_NE(signature.token, token);
    EXPECT_THAT(attempt.client.Rest("flickr.auth.oauth.checkToken", signature).body,
                AllOf(HasSubstr("<perms>write</perms>"), HasSubstr(signature.token)));
    EXPECT_THAT(attempt.client.Upload({{"title", "with the new pair"}}, {}, signature).body, HasSubstr("photoid"));
    EXPECT_EQ(attempt.Trade(form, verifier).body, "oauth_problem=token_rejected") << "a second time";

    // The administration interface shows no secret.
    const std::string admin = attempt.client.Admin("authorizations").body + attempt.client.Admin("tokens").body +
                              attempt.client.Admin("requests").body + attempt.client.Admin("account").body;
    for (const auto &secret : {verifier, FieldOf(form, "oauth_token_secret"), signature.tokenSecret})
    {
        EXPECT_THAT(admin, Not(HasSubstr(secret)));
    }
    EXPECT_EQ(attempt.State(), "\"used\"");
}

TEST(Authorization, AsksForAWholeAndUsableRequest)
{
    struct Case
    {
        const char *what;
        std::function<void(Signature &)> spoil;
        const char *answer;
    };
    const auto callback = [](const char *text) {
        return [text](Signature &s) { s.further = {{"oauth_callback", text}}; };
    };
    const Case cases[] = {
        {"no callback", [](Signature &s) { s.further.clear(); },
         "oauth_problem=parameter_absent&oauth_parameters_absent=oauth_callback"},
        {"no address", callback("test"),
         "oauth_problem=parameter_rejected&oauth_parameters_rejected=oauth_callback"},
        {"script", callback("javascript:alert(1)"), "oauth_problem=parameter_rejected"},
        {"second header", callback("http://a.example/\r\nX-Other: 1"), "oauth_problem=parameter_rejected"},
        {"second policy", callback("http://a.example;script-src *"), "oauth_problem=parameter_rejected"},
        {"no host", callback("http:///x"), "oauth_problem=parameter_rejected"},
        {"unsigned",
         [](Signature &s) {
             s.omitted = {"oauth_signature_method", "oauth_nonce"};
         },
         "oauth_problem=parameter_absent&oauth_parameters_absent=oauth_signature_method%26oauth_nonce"},
        {"key", [](Signature &s) { s.consumerKey[0] = '7'; }, "oauth_problem=consumer_key_unknown"},
        {"secret", [](Signature &s) { s.consumerSecret += "x"; },
         "oauth_problem=signature_invalid&debug_sbs=POST&https"},
        {"an old token", [](Signature &s) { s.token = "72157600000000000-demo000000000000"; },
         "oauth_problem=token_rejected"},
        {"late", [](Signature &s) { s.timestampOffset = -700; }, "oauth_problem=timestamp_refused"},
        {"http", [](Signature &s) { s.signedUrl = "http://www.flickr.com/services/oauth/request_token"; },
         "oauth_problem=signature_invalid"},
    };
    Attempt attempt;
    for (const auto &spoilt : cases)
    {
        SCOPED_TRACE(spoilt.what);
        Signature signature = Application();
        signature.further = {{"oauth_callback", MakerCallback}};
        spoilt.spoil(signature);
        const Answer answer = attempt.client.Signed(Steps + "request_token", signature);
        EXPECT_EQ(answer.status, 401);
        EXPECT_THAT(answer.contentType, StartsWith("text/plain"));
        EXPECT_THAT(answer.body, StartsWith(spoilt.answer));
    }
    Signature again = Application();
    again.further = {{"oauth_callback", "oob"}};
    again.nonce = "once";
    EXPECT_EQ(attempt.client.Signed(Steps + "request_token", again).status, 200);
    EXPECT_EQ(attempt.client.Signed(Steps + "request_token", again).body, "oauth_problem=nonce_used");
    EXPECT_THAT(attempt.client.Signed("http://www.flickr.com/services/oauth/request_token", again).body,
                HasSubstr("code=\"95\""));
}

TEST(Authorization, TradesOnlyAGrantedTokenWithItsOwnVerifierInTime)
{
    struct Case
    {
        const char *what;
        // Takes the authorization as far as the case needs and returns the verifier to try.
        std::function<std::string(Attempt &, const std::string &form)> prepare;
        std::function<void(Signature &)> spoil;
        const char *answer;
    };
    const auto nothing = [](Signature &) {};
    const auto grant = [](Attempt &attempt, const std::string &form) { return attempt.Verifier(form); };
    const Case cases[] = {
        {"too early", [](Attempt &, const std::string &) { return std::string("0123456789abcdef"); }, nothing,
         "oauth_problem=verifier_invalid"},
        {"too early, empty", [](Attempt &, const std::string &) { return std::string(); }, nothing,
         "oauth_problem=verifier_invalid"},
        {"denied",
         [](Attempt &attempt, const std::string &form) {
             attempt.Decide(form, "deny");
             return std::string("0123456789abcdef");
         },
         nothing, "oauth_problem=token_rejected"},
        {"another's verifier",
         [](Attempt &attempt, const std::string &form) {
             attempt.Verifier(form);
             return attempt.Verifier(attempt.AskForToken());
         },
         nothing, "oauth_problem=verifier_invalid"},
        {"no verifier", grant, [](Signature &s) { s.further.clear(); },
         "oauth_problem=parameter_absent&oauth_parameters_absent=oauth_verifier"},
        {"no token", grant,
         [](Signature &s) {
             s.omitted = {"oauth_token"};
             s.tokenSecret = "";
         },
         "oauth_problem=parameter_absent&oauth_parameters_absent=oauth_token"},
        {"unknown token", grant, [](Signature &s) { s.token += "0"; }, "oauth_problem=token_rejected"},
        {"token secret", grant, [](Signature &s) { s.tokenSecret = ""; }, "oauth_problem=signature_invalid"},
        {"another application", grant,
         [](Signature &s) {
             s.consumerKey = "other";
             s.consumerSecret = "other secret";
         },
         "oauth_problem=token_rejected"},
        {"late",
         [](Attempt &attempt, const std::string &form) {
             const std::string verifier = attempt.Verifier(form);
             attempt.client.Admin("authorizations/advance", {{"seconds", "601"}});
             return verifier;
         },
         nothing, "oauth_problem=token_rejected"},
    };
    for (const auto &spoilt : cases)
    {
        SCOPED_TRACE(spoilt.what);
        Attempt attempt;
        attempt.client.Admin("consumers", {{"key", "other"}, {"secret", "other secret"}});
        const std::string form = attempt.AskForToken();
        Signature signature = ForToken(form, spoilt.prepare(attempt, form));
        spoilt.spoil(signature);
        const Answer answer = attempt.client.Signed(Steps + "access_token", signature);
        EXPECT_EQ(answer.status, 401);
        EXPECT_THAT(answer.body, StartsWith(spoilt.answer));
        EXPECT_THAT(answer.body, Not(HasSubstr("oauth_token_secret")));
    }
}

TEST(Authorization, AWrongVerifierDoesNotSpoilTheRightOne)
{
    Attempt attempt;
    const std::string form = attempt.AskForToken();
    const std::string verifier = attempt.Verifier(form);
    EXPECT_EQ(attempt.Trade(form, "0000000000000000").body, "oauth_problem=verifier_invalid");
    EXPECT_EQ(attempt.Trade(form, verifier).status, 200);
}

TEST(Authorization, GivesTheAccessTokenOnceEvenToTheHasty)
{
    Attempt attempt;
    const std::string form = attempt.AskForToken();
    const std::string verifier = attempt.Verifier(form);
    std::atomic<int> given = 0;
    std::vector<std::thread> traders;
    for (int i = 0; i < 8; ++i)
    {
        Signature signature = ForToken(form, verifier);
        signature.nonce = "hasty-" + std::to_string(i);
        traders.emplace_back([&, signature] {
            given += attempt.service.Client().Signed(Steps + "access_token", signature).status == 200 ? 1 : 0;
        });
    }
    for (auto &trader : traders)
    {
        trader.join();
    }
    EXPECT_EQ(given, 1);
}

TEST(Authorization, KeepsThePermissionAndTheApplicationWithTheToken)
{
    struct Case
    {
        const char *permission;
        bool mayUpload;
        const char *question;
    };
    for (const auto &[permission, mayUpload, question] :
         {Case{"read", false, "see your photos?"}, Case{"write", true, "upload photos to your account?"},
          Case{"delete", true, "upload and delete photos in your account?"}})
    {
        SCOPED_TRACE(permission);
        Attempt attempt;
        const std::string form = attempt.AskForToken();
        EXPECT_THAT(attempt.client.Get(attempt.PageAddress(form, permission)).body, HasSubstr(question));
        const Answer granted = attempt.Decide(form, "allow", permission);
        const std::string pair =
            attempt.Trade(form, FieldOf(granted.headers.at("location"), "oauth_verifier")).body;
        Signature signature = ForToken(pair, "");
        signature.further.clear();
        EXPECT_THAT(attempt.client.Rest("flickr.auth.oauth.checkToken", signature).body,
                    HasSubstr(std::string("<perms>") + permission + "</perms>"));
        EXPECT_THAT(attempt.client.Upload({}, {}, signature).body,
                    HasSubstr(mayUpload ? "photoid" : "code=\"99\""));
        attempt.client.Admin("consumers", {{"key", "other"}, {"secret", "other secret"}});
        signature.consumerKey = "other";
        signature.consumerSecret = "other secret";
        EXPECT_EQ(attempt.client.Rest("flickr.test.login", signature).body, "oauth_problem=token_rejected");
    }
}

TEST(Authorization, TheAnswerCountsOnlyFromThePageAsThisBrowserShowsIt)
{
    struct Case
    {
        const char *what;
        std::function<void(Fields &)> spoil;
        long status;
        const char *words;
    };
    const auto set = [](const char *name, const char *value) {
        return [=](Fields &fields) {
            std::erase_if(fields, [&](const auto &field) { return field.first == name; });
            fields.emplace_back(name, value);
        };
    };
    const Case cases[] = {
        {"form key", set("form_key", "AAAAAAAAAAAAAAAAAAAAAAAAAAA="), 403, "did not count"},
        {"more than was shown", set("perms", "delete"), 403, "did not count"},
        {"another account", set("user", "somebody"), 422, "There is no account of this name here."},
        {"markup", set("user", "\"><script>"), 422, "value=\"&quot;&gt;&lt;script&gt;\""},
        {"no decision", set("decision", ""), 200, "upload photos to your account?"},
        {"another token", set("oauth_token", "72157000000000000-0000000000000000"), 404, "known here"},
    };
    Attempt attempt;
    const std::string form = attempt.AskForToken();
    for (const auto &spoilt : cases)
    {
        SCOPED_TRACE(spoilt.what);
        const Answer answer = attempt.Decide(form, "allow", "write", spoilt.spoil);
        EXPECT_EQ(answer.status, spoilt.status);
        EXPECT_THAT(answer.body, HasSubstr(spoilt.words));
        EXPECT_EQ(attempt.State(), "\"pending\"");
    }
    const Answer page = attempt.client.Get(attempt.PageAddress(form));
    const Fields fields = {{"decision", "allow"},
                           {"user", "halvora-demo"},
                           {"perms", "write"},
                           {"oauth_token", FieldOf(form, "oauth_token")},
                           {"form_key", HiddenField(page.body, "form_key")}};
    for (const char *header :
         {"", "Cookie: visitor=00000000000000000000000000000000", "Origin: https://evil.example"})
    {
        EXPECT_EQ(attempt.client.Post(Steps + "authorize", fields, header).status, 403) << header;
    }
    EXPECT_EQ(attempt.State(), "\"pending\"");
}

TEST(Authorization, SaysWhyThereIsNothingToAnswer)
{
    struct Case
    {
        std::function<void(Attempt &, const std::string &)> prepare;
        const char *query;
        long status;
        const char *words;
        const char *state;
    };
    const Case cases[] = {
        {[](Attempt &, const std::string &) {}, "", 404, "known here", "\"pending\""},
        {[](Attempt &, const std::string &) {}, "oauth_token=%00%3Cb%3E", 404, "known here", "\"pending\""},
        {[](Attempt &, const std::string &) {}, "perms=everything&oauth_token=", 400, "doesn’t exist",
         "\"pending\""},
        {[](Attempt &attempt, const std::string &form) { attempt.Decide(form, "deny"); },
         "perms=write&oauth_token=", 410, "You have already said no", "\"denied\""},
        {[](Attempt &attempt, const std::string &form) { attempt.Decide(form, "allow"); },
         "perms=write&oauth_token=", 410, "You have already allowed this", "\"granted\""},
        {[](Attempt &attempt, const std::string &) {
             attempt.client.Admin("authorizations/advance", {{"seconds", "600"}});
         },
         "perms=write&oauth_token=", 410, "time for this question is over", "\"expired\""},
        {[](Attempt &attempt, const std::string &) {
             attempt.client.Admin("account", {{"request_token_seconds", "0"}});
         },
         "perms=write&oauth_token=", 410, "time for this question is over", "\"expired\""},
    };
    for (const auto &reason : cases)
    {
        SCOPED_TRACE(std::string(reason.words) + reason.query);
        Attempt attempt;
        const std::string form = attempt.AskForToken();
        reason.prepare(attempt, form);
        std::string query = reason.query;
        query += query.ends_with('=') ? FieldOf(form, "oauth_token") : "";
        const Answer answer = attempt.client.Get(Steps + "authorize?" + query);
        EXPECT_EQ(answer.status, reason.status);
        EXPECT_THAT(answer.body, HasSubstr(reason.words));
        EXPECT_EQ(attempt.State(), reason.state);
    }
}

TEST(Authorization, ADenialGrantsNothingAndCallsNobody)
{
    Attempt attempt;
    const std::string form = attempt.AskForToken();
    // A refusal needs no name.
    const Answer denied = attempt.Decide(form, "deny", "write", [](Fields &fields) { fields[1].second = ""; });
    EXPECT_EQ(denied.status, 200);
    EXPECT_FALSE(denied.headers.contains("location"));
    EXPECT_THAT(denied.body, HasSubstr("Nothing was granted"));
    EXPECT_EQ(attempt.Decide(attempt.AskForToken(), "allow").status, 302) << "the next time is a new one";
    EXPECT_THAT(attempt.client.Get(MakerExchange + FieldOf(form, "oauth_token")).body,
                Not(HasSubstr("<Verifier>")));
}

TEST(Authorization, AProgramWithoutACallbackGetsItsCodeThroughTheUser)
{
    Attempt attempt;
    const std::string form = attempt.AskForToken("oob");
    const Answer page = attempt.Decide(form, "allow");
    EXPECT_EQ(page.status, 200);
    const auto begin = page.body.find("class=\"code\">") + 13;
    EXPECT_EQ(attempt.Trade(form, page.body.substr(begin, page.body.find('<', begin) - begin)).status, 200);
}

TEST(Authorization, TheMakersEndpointKeepsOnlyWhatItWasSentAndOnlyForAWhile)
{
    Attempt attempt;
    const std::string secure = "https://authorization.halvora.example/flickr/authorization";
    for (const auto &[query, status] : {std::pair{"", 400L},
                                        {"?oauth_token=&oauth_verifier=v", 400L},
                                        {"?oauth_token=t&oauth_verifier=", 400L},
                                        {"?oauth_verifier=v", 400L},
                                        {"?oauth_token=t&oauth_verifier=a%0Ab", 400L},
                                        {"?oauth_token=t", 404L},
                                        {"/other", 404L}})
    {
        const Answer answer = attempt.client.Get(secure + query);
        EXPECT_EQ(answer.status, status) << query;
        EXPECT_THAT(answer.body, Not(HasSubstr("<Verifier>"))) << query;
    }
    attempt.client.Get(MakerCallback + "?oauth_token=t&oauth_verifier=first%3C");
    attempt.client.Get(MakerCallback + "?oauth_token=t&oauth_verifier=second");
    EXPECT_EQ(attempt.client.Get(MakerCallback + "?oauth_token=t").status, 403) << "not in plain";
    EXPECT_EQ(attempt.client.Head(secure + "?oauth_token=t").status, 405) << "a look at the headers takes nothing";
    EXPECT_THAT(attempt.client.Get(secure + "?oauth_token=t").body, HasSubstr("<Verifier>first&lt;</Verifier>"));
    attempt.client.Get(MakerCallback + "?oauth_token=u&oauth_verifier=v");
    attempt.client.Admin("authorizations/advance", {{"seconds", "600"}});
    EXPECT_EQ(attempt.client.Get(secure + "?oauth_token=u").status, 404);
    EXPECT_EQ(attempt.client.Admin("authorizations/advance", {{"seconds", "-1"}}).status, 400);
}

TEST(Authorization, CanBeMadeToFailAtEachParty)
{
    Attempt attempt;
    attempt.client.Admin("faults", {{"kind", "garbage"}, {"target", "maker"}});
    attempt.client.Admin("faults", {{"kind", "status"}, {"target", "oauth"}, {"status", "503"}});
    EXPECT_THAT(attempt.client.Get(MakerExchange + "t").body, Not(HasSubstr("TRNQVerifierExchange")));
    Signature signature = Application();
    signature.further = {{"oauth_callback", MakerCallback}};
    EXPECT_EQ(attempt.client.Signed(Steps + "request_token", signature).status, 503);
    EXPECT_THAT(attempt.client.Get(MakerExchange + "t").body, HasSubstr("TRNQVerifierExchange"));
    EXPECT_FALSE(attempt.AskForToken().empty());
}

TEST(Authorization, OutlivesTheService)
{
    TestFolder folder;
    const auto now = [] { return std::int64_t{1000}; };
    const auto life = [] { return std::int64_t{600}; };
    std::string token;
    std::string verifier;
    {
        loopback::Database database(folder.Path() / "index.sqlite");
        loopback::RequestTokenBook book(database, now, life);
        token = book.Add("key", "oob").token;
        verifier = book.Grant(token, "read").value().verifier;
    }
    loopback::Database database(folder.Path() / "index.sqlite");
    loopback::RequestTokenBook book(database, now, life);
    EXPECT_EQ(book.Find(token).value().verifier, verifier);
    EXPECT_EQ(book.Use(token), "read");
    EXPECT_EQ(book.Use(token), std::nullopt);
}

TEST(Authorization, RequestsMayNameTheirWholeAddress)
{
    RunningService service;
    LoopbackClient client = service.Client();
    Signature signature = Application();
    signature.further = {{"oauth_callback", MakerCallback}};
    const std::string step = "services/oauth/request_token";
    EXPECT_EQ(client.Signed(Steps + "request_token", signature, "https://WWW.flickr.com:443/" + step).status, 200);
    EXPECT_EQ(client.Signed(Steps + "request_token", signature, "https://other.example/" + step).status, 421);
    EXPECT_EQ(client.Signed(Steps + "request_token", signature, "https://www.flickr.com/" + step + "?a=b").status,
              401)
        << "its query is signed too";
}

TEST(Authorization, AnIndexOfBeforeThereWasAnyIsGoodStill)
{
    TestFolder folder;
    loopback::Database database(folder.Path() / "index.sqlite");
    database.Run("CREATE TABLE account (name TEXT PRIMARY KEY, value TEXT NOT NULL)");
    database.Run("CREATE TABLE consumers (key TEXT PRIMARY KEY, secret TEXT NOT NULL)");
    database.Run("CREATE TABLE tokens (token TEXT PRIMARY KEY, secret TEXT NOT NULL, permission TEXT NOT NULL)");
    database.Run("INSERT INTO account VALUES ('user_name', 'kept')");
    database.Run("INSERT INTO consumers VALUES ('68616c766f72612d64656d6f2d6b6579', '64656d6f2d736563')");
    database.Run("INSERT INTO tokens VALUES ('t', 's', 'write')");
    loopback::AccountBook accounts(database);
    EXPECT_EQ(accounts.Get().userName, "kept");
    EXPECT_EQ(accounts.Get().requestTokenLife, 600);
    EXPECT_EQ(accounts.ConsumerName("68616c766f72612d64656d6f2d6b6579"), "Halvora");
    EXPECT_EQ(accounts.FindToken("t").value().permission, "write");
}
