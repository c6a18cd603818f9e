#include "host/Commands.h"

#include "host/FileNames.h"
#include "host/SystemWords.h"
#include "host/TextEncodings.h"

#include "account/AccountRecord.h"
#include "account/ServiceReply.h"
#include "account/WebClientFactory.h"
#include "com/Hresult.h"
#include "core/VersionBlock.h"

#include <span>

namespace
{
// How many tickets one request asks about.
constexpr size_t TicketsPerRequest = 50;

void Add(IRequestParameters &parameters, const WCHAR *name, const std::string &text)
{
    const BstrOwner content(TextFromUtf8OrLatin(text));
    VARIANT value{};
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = content.Get();
    ThrowIfFailed(parameters.Add(name, value));
}

// The service's reply, or its refusal, or the failure to reach it, thrown as words.
ComPtr<IXMLDOMDocument2> AskAbout(IOAuthWebClient &client, std::span<const JournalEntry> entries)
{
    std::string tickets;
    for (const JournalEntry &entry : entries)
    {
        tickets += (tickets.empty() ? "" : ",") + entry.ticket;
    }
    ComPtr<IRequestParameters> parameters;
    ThrowIfFailed(CoCreateInstance(CLSID_RequestParameters, nullptr, CLSCTX_ALL, __uuidof(IRequestParameters),
                                   parameters.PutVoid()));
    Add(*parameters.Get(), TEXT("method"), "flickr.photos.upload.checkTickets");
    Add(*parameters.Get(), TEXT("tickets"), tickets);
    ComPtr<IUnknown> reply;
    const HRESULT result = client.RestRequest(nullptr, TEXT("POST"), nullptr, parameters.Get(), 0, reply.Put());
    const auto document = reply ? reply.As<IXMLDOMDocument2>() : nullptr;
    if (FAILED(result) || !document || FAILED(ReadOutcome(document.Get())))
    {
        bool isServiceError = false;
        throw ProfileError("Flickr could not be asked about the pictures that were handed in: " +
                           Utf8FromText(ComposeReplyError(reply.Get(), isServiceError)));
    }
    return document;
}

std::string Attribute(IXMLDOMDocument2 *reply, const std::string &ticket, const char *name)
{
    BstrOwner text;
    const std::string path = "/rsp/uploader/ticket[@id=\"" + ticket + "\"]/@" + name;
    return SUCCEEDED(ReadNodeText(reply, TextFromUtf8OrLatin(path).c_str(), text)) ? Utf8FromText(text.View())
                                                                                   : std::string();
}

void Enter(Journal &journal, const JournalEntry &entry, IXMLDOMDocument2 *reply,
           std::vector<std::string> &problems)
{
    const std::string complete = Attribute(reply, entry.ticket, "complete");
    if (complete == "1")
    {
        journal.Settle(entry.id, JournalOutcome::Published, Attribute(reply, entry.ticket, "photoid"),
                       entry.ticket);
    }
    else if (complete == "2")
    {
        journal.Forget(entry.id);
        problems.push_back(ShownPath(entry.file.path) +
                           " was handed in, and Flickr refused it. The next run sends it again.");
    }
    else if (Attribute(reply, entry.ticket, "invalid") == "1")
    {
        problems.push_back("Flickr doesn't know the ticket " + entry.ticket + " of " + ShownPath(entry.file.path) +
                           " any more. Look at Flickr whether the picture is there.");
    }
}
} // namespace

std::vector<std::string> RefreshTickets(Journal &journal, const AccountData &data)
{
    std::vector<JournalEntry> entries = journal.Entries();
    std::erase_if(entries, [](const JournalEntry &entry) { return entry.outcome != JournalOutcome::HandedIn; });
    AccountRecord account;
    account.OAuthToken = BstrOwner(data.token.value_or(WideText()));
    account.OAuthTokenSecret = BstrOwner(data.tokenSecret.value_or(WideText()));
    std::vector<std::string> problems;
    const auto client = CreateWebClient(account, VersionBlock::OfThisModule());
    if (!client)
    {
        return {"Flickr can't be asked: the module of the web components isn't installed."};
    }
    for (std::span<const JournalEntry> rest(entries); !rest.empty();)
    {
        const auto some = rest.first(std::min(rest.size(), TicketsPerRequest));
        rest = rest.subspan(some.size());
        const auto reply = AskAbout(*client.Get(), some);
        for (const JournalEntry &entry : some)
        {
            Enter(journal, entry, reply.Get(), problems);
        }
    }
    return problems;
}
