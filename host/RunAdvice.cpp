#include "host/RunAdvice.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace
{
// A number that the plug-in's entries name, and what to do about it.
struct Rule
{
    std::string_view mark;
    long first;
    long last;
    const char *advice;
};

constexpr const char *AuthorizeAgain =
    "Flickr does not accept Halvora's authorization. Authorize Halvora again (in a terminal: halvora authorize).";

constexpr std::string_view HttpStatus = "HTTP Status = ";
constexpr std::string_view ServiceStatus = "Flickr Status = ";

constexpr const char *LaterAgain = "Flickr is out of order or overloaded. Publish the rest later.";

constexpr Rule Rules[] = {
    {ServiceStatus, 6, 6,
     "The account's limit is reached: it takes no more pictures this month, or none any more. Flickr's pages tell "
     "which; publish the rest when there is space again."},
    {ServiceStatus, 95, 97,
     "Flickr doesn't accept how this version of Halvora sends its requests. Check the clock of this computer, and "
     "whether there is a newer version."},
    {ServiceStatus, 98, 99, AuthorizeAgain},
    {ServiceStatus, 100, 100,
     "Flickr doesn't know the key that this program was built with. Get a package of its maker, or build it with "
     "a "
     "key of your own."},
    {ServiceStatus, 105, 106, LaterAgain},
    {HttpStatus, 401, 401, AuthorizeAgain},
    {HttpStatus, 403, 403, AuthorizeAgain},
    {HttpStatus, 429, 429, "Flickr takes no more requests for now. Wait some minutes, then publish the rest."},
    {HttpStatus, 500, 599, LaterAgain},
};

// Behind the path and the code, which may look like anything.
std::string_view WordsOf(std::string_view entry)
{
    const size_t code = entry.rfind("(Error code: ");
    return code == entry.npos ? entry : entry.substr(code);
}

// The number behind the mark, 0 if the words don't have the mark.
long NumberBehind(std::string_view mark, std::string_view words)
{
    const size_t at = words.find(mark);
    return at == words.npos ? 0 : std::strtol(std::string(words.substr(at + mark.size())).c_str(), nullptr, 10);
}

std::string ProxyAdvice(const ConnectionSettings &settings)
{
    return settings.proxy.empty()
               ? settings.proxy
               : "Connections go through the proxy " + settings.proxy + ", which the variable " +
                     settings.proxyVariable + " names. Check that it is right and that the proxy runs.";
}

std::string TrustAdvice(const ConnectionSettings &settings)
{
    return settings.trustFile.empty() ? settings.trustFile
                                      : "Trusted certificates are read from " + settings.trustFile +
                                            " alone, which the variable HALVORA_CA_FILE names. Check that file.";
}
} // namespace

long ServiceCode(const std::string &entry)
{
    return NumberBehind(ServiceStatus, WordsOf(entry));
}

bool IsRefusalOfFile(long code)
{
    return (code >= 2 && code <= 5) || code == 8 || code == 9;
}

bool SaysNoConnection(const std::string &entry)
{
    return WordsOf(entry).find("No connection") != std::string_view::npos;
}

std::chrono::seconds RequestedWait(const std::string &entry)
{
    constexpr std::string_view asks = "The service asks to wait ";
    constexpr long longest = 600;
    return std::chrono::seconds(std::clamp(NumberBehind(asks, WordsOf(entry)), 0L, longest));
}

std::vector<std::string> AdviceFor(const std::vector<std::string> &entries, const ConnectionSettings &settings)
{
    std::vector<std::string> lines;
    const auto add = [&](const std::string &line) {
        if (!line.empty() && std::find(lines.begin(), lines.end(), line) == lines.end())
        {
            lines.push_back(line);
        }
    };
    for (const std::string &entry : entries)
    {
        const std::string_view words = WordsOf(entry);
        for (const Rule &rule : Rules)
        {
            const long number = NumberBehind(rule.mark, words);
            if (number >= rule.first && number <= rule.last)
            {
                add(rule.advice);
            }
        }
        if (SaysNoConnection(entry))
        {
            add(ProxyAdvice(settings));
        }
        if (words.find("Connection not secure") != words.npos)
        {
            add(TrustAdvice(settings));
        }
    }
    return lines;
}
