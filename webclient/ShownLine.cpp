#include "webclient/ShownLine.h"

#include "com/AsciiText.h"
#include "com/SafeText.h"

#include <algorithm>

std::string WithoutSecrets(std::string text, SecretViews secrets)
{
    // The longest first: it may hold another one, without which the rest of it would not be found.
    std::sort(secrets.begin(), secrets.end(),
              [](std::string_view a, std::string_view b) { return a.size() > b.size(); });
    for (const std::string_view secret : secrets)
    {
        if (Trimmed(secret).empty())
        {
            continue;
        }
        for (size_t at = 0; (at = text.find(secret, at)) != text.npos; ++at)
        {
            text.replace(at, secret.size(), 1, ' ');
        }
    }
    return text;
}

std::string ShownLine(std::string_view text, const SecretViews &secrets, std::size_t longest)
{
    WideText line;
    for (const WCHAR c : FromUtf8(WithoutSecrets(std::string(text), secrets)))
    {
        if (c != ' ' && !IsCommand(c))
        {
            line.push_back(c);
        }
        else if (!line.empty() && line.back() != ' ')
        {
            line.push_back(' ');
        }
    }
    if (line.size() > longest)
    {
        const bool cutsPair = (line[longest - 1] & 0xFC00) == 0xD800;
        line.resize(longest - (cutsPair ? 1 : 0));
        line += TEXT("...");
    }
    while (!line.empty() && line.back() == ' ')
    {
        line.pop_back();
    }
    return ToUtf8(line);
}
