#include "fuzz/FuzzTarget.h"

#include "account/AccountRecord.h"
#include "com/Hresult.h"
#include "host/InitData.h"
#include "platform/advapi32/RegistryText.h"
#include "plugin/InitDataStream.h"
#include "tests/doubles/MemoryStream.h"

namespace
{
std::vector<std::string> RegistrySamples()
{
    return {
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Halvora]\r\n"
        "@=\"default\"\r\n\"Text\"=\"a \\\"quoted\\\" C:\\\\x\"\r\n\"Number\"=dword:0000002a\r\n"
        "\"Bytes\"=hex:01,02,\\\r\n  "
        "03,ff\r\n\"Wide\"=hex(2):41,00,00,00\r\n\"Big\"=hex(b):01,00,00,00,00,00,00,00\r\n"
        "; words\r\n\r\n[HKEY_CLASSES_ROOT\\CLSID\\{CACAF262-9370-4615-A13B-9F5539DA4C0A}]\r\n@=\"x\"\r\n",
        "Windows Registry Editor Version 5.00\n\n[HKEY_CURRENT_USER\\A]\r\r\n\"x\"=\"y\"\r\r\n\r\r\n",
        "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\A]\n\"\xC3\xA4\"=\"\xF0\x9F\x8C\x8A\"\n"};
}

void ReadRegistry(std::string_view bytes)
{
    if (const auto tree = ParseRegistryText(bytes))
    {
        const std::string text = FormatRegistryText(*tree);
        const auto again = ParseRegistryText(text);
        if (!again || FormatRegistryText(*again) != text)
        {
            Broken("a store that was read is written so that it can be read");
        }
    }
}

std::vector<std::string> AccountSamples()
{
    AccountData account;
    std::vector<std::string> samples{ComposeInitData(account)};
    account.token = u"token";
    account.tokenSecret = u"secret";
    account.userName = u"somebody";
    account.photosUrl = u"http://www.example.com/";
    account.maxFileSize = 1 << 30;
    samples.push_back(ComposeInitData(account));
    return samples;
}

void ReadAccount(std::string_view bytes)
{
    const auto account = ParseInitData(bytes);
    if (account && !bytes.empty() && ComposeInitData(*account) != bytes)
    {
        Broken("account data is just what would be written");
    }
    const auto stream = MemoryStream::Make(bytes);
    AccountRecord record;
    bool failed = false;
    try
    {
        ReadInitData(stream.Get(), record);
    }
    catch (const HresultError &)
    {
        failed = true;
    }
    if (account && failed)
    {
        Broken("the plug-in reads what the host takes for account data");
    }
}
} // namespace

const FuzzTarget RegistryFiles{"registry", RegistrySamples, ReadRegistry};
const FuzzTarget AccountStreams{"account", AccountSamples, ReadAccount};
