#include "platform/atl/RegistryScript.h"

#include "com/Hresult.h"

#include <oleauto.h>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace
{
[[noreturn]] void Refuse()
{
    ThrowHresult(DISP_E_EXCEPTION);
}

bool IsBlank(WCHAR unit)
{
    return unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n';
}

WideText Replace(WideView text, const ScriptReplacements &replacements)
{
    WideText replaced;
    for (size_t at = 0; at < text.size();)
    {
        if (text[at] != '%')
        {
            replaced += text[at++];
            continue;
        }
        const size_t end = text.find('%', at + 1);
        if (end == WideView::npos)
        {
            Refuse();
        }
        const WideView name = text.substr(at + 1, end - at - 1);
        const auto found = replacements.find(UpperCaseName(name));
        if (!name.empty() && found == replacements.end())
        {
            Refuse();
        }
        replaced += name.empty() ? WideText(TEXT("%")) : found->second;
        at = end + 1;
    }
    return replaced;
}

struct Word
{
    WideText text;
    bool isQuoted = false;

    // In quotes a sign or keyword is plain text; keywords may be written in any case.
    bool Is(const WCHAR *sign) const { return !isQuoted && UpperCaseName(text) == UpperCaseName(sign); }
};

class Words
{
public:
    explicit Words(WideView text) : m_left(text) { Advance(); }

    bool AtEnd() const { return !m_next; }
    const Word &Next() const { return m_next ? *m_next : throw HresultError(DISP_E_EXCEPTION); }

    bool Accept(const WCHAR *sign)
    {
        const bool isThere = m_next && m_next->Is(sign);
        if (isThere)
        {
            Advance();
        }
        return isThere;
    }

    void Expect(const WCHAR *sign)
    {
        if (!Accept(sign))
        {
            Refuse();
        }
    }

    WideText Take()
    {
        WideText text = Next().text;
        Advance();
        return text;
    }

    WideText TakeName()
    {
        if (Next().Is(TEXT("{")) || Next().Is(TEXT("}")) || Next().Is(TEXT("=")))
        {
            Refuse();
        }
        return Take();
    }

private:
    void Advance()
    {
        m_next.reset();
        while (!m_left.empty() && IsBlank(m_left[0]))
        {
            m_left.remove_prefix(1);
        }
        if (m_left.empty())
        {
            return;
        }
        m_next = m_left[0] == '\'' ? TakeQuoted() : TakeBare();
    }

    Word TakeBare()
    {
        const auto end = std::find_if(m_left.begin(), m_left.end(), IsBlank);
        const size_t length = static_cast<size_t>(end - m_left.begin());
        Word word{WideText(m_left.substr(0, length)), false};
        m_left.remove_prefix(length);
        return word;
    }

    Word TakeQuoted()
    {
        Word word{{}, true};
        for (m_left.remove_prefix(1);; m_left.remove_prefix(1))
        {
            if (m_left.empty())
            {
                Refuse();
            }
            if (m_left[0] == '\'')
            {
                m_left.remove_prefix(1);
                if (m_left.empty() || m_left[0] != '\'')
                {
                    return word;
                }
            }
            word.text += m_left[0];
        }
    }

    WideView m_left;
    std::optional<Word> m_next;
};

unsigned long long ReadDigits(WideView text, int base)
{
    const std::string narrow(text.begin(), text.end());
    unsigned long long number = 0;
    const auto result = std::from_chars(narrow.data(), narrow.data() + narrow.size(), number, base);
    if (narrow.empty() || result.ec != std::errc() || result.ptr != narrow.data() + narrow.size())
    {
        Refuse();
    }
    return number;
}

std::vector<BYTE> BytesOf(const void *data, size_t size)
{
    const auto *bytes = static_cast<const BYTE *>(data);
    return std::vector<BYTE>(bytes, bytes + size);
}

ScriptValue ReadValue(Words &words)
{
    const WideText kind = words.Next().isQuoted ? WideText() : UpperCaseName(words.Next().text);
    words.Take();
    const WideText text = words.TakeName();
    if (kind == TEXT("S"))
    {
        return {REG_SZ, BytesOf(text.c_str(), (text.size() + 1) * sizeof(WCHAR))};
    }
    if (kind == TEXT("D"))
    {
        const bool isHexadecimal = text.starts_with(TEXT("&H")) || text.starts_with(TEXT("&h"));
        const auto number = isHexadecimal ? ReadDigits(WideView(text).substr(2), 16) : ReadDigits(text, 10);
        if (number > 0xFFFFFFFF)
        {
            Refuse();
        }
        const auto narrow = static_cast<DWORD>(number);
        return {REG_DWORD, BytesOf(&narrow, sizeof(narrow))};
    }
    if (kind != TEXT("B") || text.size() % 2 != 0)
    {
        Refuse();
    }
    ScriptValue value{REG_BINARY, {}};
    for (size_t at = 0; at < text.size(); at += 2)
    {
        value.data.push_back(static_cast<BYTE>(ReadDigits(WideView(text).substr(at, 2), 16)));
    }
    return value;
}

// Keys of the system that no script may remove with all their subkeys.
bool IsShared(const WideText &name)
{
    static constexpr const WCHAR *Names[] = {TEXT("APPID"),    TEXT("CLSID"),    TEXT("COMPONENT CATEGORIES"),
                                             TEXT("FILETYPE"), TEXT("HARDWARE"), TEXT("INTERFACE"),
                                             TEXT("MIME"),     TEXT("SAM"),      TEXT("SECURITY"),
                                             TEXT("SOFTWARE"), TEXT("SYSTEM"),   TEXT("TYPELIB")};
    return std::find(std::begin(Names), std::end(Names), UpperCaseName(name)) != std::end(Names);
}

ScriptAction ReadAction(Words &words)
{
    static constexpr struct
    {
        const WCHAR *word;
        ScriptAction action;
    } actions[] = {{TEXT("NoRemove"), ScriptAction::NoRemove},
                   {TEXT("ForceRemove"), ScriptAction::ForceRemove},
                   {TEXT("Delete"), ScriptAction::Delete}};
    for (const auto &entry : actions)
    {
        if (words.Accept(entry.word))
        {
            return entry.action;
        }
    }
    return ScriptAction::Plain;
}

// What lies between braces; the opening one has been read.
void ReadBody(Words &words, ScriptKey &key)
{
    // More than any script needs, and far from what the stack holds.
    constexpr size_t deepest = 64;
    struct Level
    {
        explicit Level(size_t &depth) : m_depth(depth)
        {
            if (++m_depth > deepest)
            {
                --m_depth;
                Refuse();
            }
        }
        ~Level() { --m_depth; }
        size_t &m_depth;
    };
    static thread_local size_t depth = 0;
    const Level level(depth);
    while (!words.Accept(TEXT("}")))
    {
        const ScriptAction action = ReadAction(words);
        if (words.Accept(TEXT("val")))
        {
            WideText name = words.TakeName();
            words.Expect(TEXT("="));
            key.values.push_back({std::move(name), ReadValue(words), action == ScriptAction::NoRemove});
            continue;
        }
        ScriptKey child;
        child.action = action;
        child.name = words.TakeName();
        const bool removesAll = action == ScriptAction::ForceRemove || action == ScriptAction::Delete;
        if (child.name.empty() ||
            (removesAll && (IsShared(child.name) || child.name.find('\\') != WideText::npos)))
        {
            Refuse();
        }
        if (words.Accept(TEXT("=")))
        {
            child.value = ReadValue(words);
        }
        if (words.Accept(TEXT("{")))
        {
            ReadBody(words, child);
        }
        key.keys.push_back(std::move(child));
    }
}

HKEY RootNamed(const WideText &name)
{
    static const struct
    {
        const WCHAR *shortName;
        const WCHAR *name;
        HKEY key;
    } roots[] = {{TEXT("HKCR"), TEXT("HKEY_CLASSES_ROOT"), HKEY_CLASSES_ROOT},
                 {TEXT("HKCU"), TEXT("HKEY_CURRENT_USER"), HKEY_CURRENT_USER},
                 {TEXT("HKLM"), TEXT("HKEY_LOCAL_MACHINE"), HKEY_LOCAL_MACHINE}};
    const WideText wanted = UpperCaseName(name);
    for (const auto &root : roots)
    {
        if (wanted == root.shortName || wanted == root.name)
        {
            return root.key;
        }
    }
    Refuse();
}
} // namespace

WideText UpperCaseName(WideView name)
{
    WideText upper(name);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](WCHAR unit) {
        return unit >= 'a' && unit <= 'z' ? static_cast<WCHAR>(unit - 'a' + 'A') : unit;
    });
    return upper;
}

std::vector<ScriptRoot> ReadRegistryScript(WideView text, const ScriptReplacements &replacements)
{
    const WideText replaced = Replace(text, replacements);
    Words words(replaced);
    std::vector<ScriptRoot> roots;
    do
    {
        ScriptRoot root;
        root.root = RootNamed(words.TakeName());
        words.Expect(TEXT("{"));
        ScriptKey all;
        ReadBody(words, all);
        if (!all.values.empty())
        {
            Refuse();
        }
        root.keys = std::move(all.keys);
        roots.push_back(std::move(root));
    } while (!words.AtEnd());
    return roots;
}
