#include "platform/windowscodecs/jpeg/QueryPath.h"

#include "com/AsciiText.h"
#include "com/Hresult.h"

#include <wincodec.h>

namespace
{
[[noreturn]] void Refuse()
{
    ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
}

class PathParser
{
public:
    explicit PathParser(WideView text) : m_text(text) {}

    QueryPath Parse()
    {
        QueryPath path;
        while (m_at < m_text.size())
        {
            Expect('/');
            path.push_back(ParseItem());
        }
        if (path.empty())
        {
            Refuse();
        }
        return path;
    }

private:
    bool Sees(WCHAR c) const noexcept { return m_at < m_text.size() && m_text[m_at] == c; }

    void Expect(WCHAR c)
    {
        if (!Sees(c))
        {
            Refuse();
        }
        ++m_at;
    }

    // Up to one of the ends, which stays; a backslash takes the next character's meaning away.
    WideText TakeUntil(WideView ends)
    {
        WideText taken;
        while (m_at < m_text.size() && ends.find(m_text[m_at]) == WideView::npos)
        {
            if (m_text[m_at] == '\\' && m_at + 1 < m_text.size())
            {
                ++m_at;
            }
            taken += m_text[m_at++];
        }
        return taken;
    }

    WORD ParseNumber(WideView digits)
    {
        UINT value = 0;
        if (digits.empty() || digits.size() > 5)
        {
            Refuse();
        }
        for (const WCHAR digit : digits)
        {
            if (digit < '0' || digit > '9')
            {
                Refuse();
            }
            value = value * 10 + (digit - '0');
        }
        if (value > 0xFFFF)
        {
            Refuse();
        }
        return static_cast<WORD>(value);
    }

    void ParseTyped(QueryItem &item)
    {
        Expect('{');
        const WideText type = TakeUntil(TEXT("=}"));
        Expect('=');
        const WideText value = TakeUntil(TEXT("}"));
        Expect('}');
        if (EqualsIgnoringCase(type, TEXT("str")))
        {
            item.Text = value;
            return;
        }
        if (!EqualsIgnoringCase(type, TEXT("ushort")))
        {
            Refuse();
        }
        item.ItemKind = QueryItem::Kind::Number;
        item.Number = ParseNumber(value);
    }

    QueryItem ParseItem()
    {
        QueryItem item;
        if (Sees('['))
        {
            ++m_at;
            item.Index = ParseNumber(TakeUntil(TEXT("]")));
            Expect(']');
        }
        if (Sees('<'))
        {
            ++m_at;
            TakeUntil(TEXT(">"));
            Expect('>');
        }
        if (Sees('{'))
        {
            ParseTyped(item);
        }
        else
        {
            item.Text = TakeUntil(TEXT("/"));
        }
        if (item.ItemKind == QueryItem::Kind::Name && item.Text.empty())
        {
            Refuse();
        }
        return item;
    }

    WideView m_text;
    size_t m_at = 0;
};
} // namespace

QueryPath ParseQueryPath(WideView text)
{
    return PathParser(text).Parse();
}
