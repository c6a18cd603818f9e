#include "platform/windowscodecs/jpeg/XmpProperties.h"

#include "com/Hresult.h"
#include "platform/kernel32/Utf8.h"

#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <mutex>

#include <wincodec.h>

namespace
{
std::recursive_mutex libraryLock;

void LockLibrary(void *, bool lock)
{
    lock ? libraryLock.lock() : libraryLock.unlock();
}

void PrepareLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize(LockLibrary, nullptr);
    });
}

[[noreturn]] void RefusePath()
{
    ThrowHresult(WINCODEC_ERR_INVALIDQUERYREQUEST);
}

// The library's own failures become the given code.
template <class Work>
auto Translate(HRESULT code, Work work)
{
    try
    {
        const std::lock_guard lock(libraryLock);
        return work();
    }
    catch (const Exiv2::AnyError &)
    {
        ThrowHresult(code);
    }
}

struct Property
{
    std::string Key; // of the whole value in the library's data
    bool HasElement = false;
    ULONG Element = 0;    // of an array, from 0
    std::string Language; // of an alternative
    Exiv2::TypeId Collection = Exiv2::invalidTypeId;
};

// "dc:title", or a schema's address and "title", as "dc" and "title".
std::pair<std::string, std::string> SplitName(const QueryItem &item)
{
    std::string text = ToUtf8(item.Text);
    if (!item.Schema.empty())
    {
        std::string schema = ToUtf8(item.Schema);
        std::string prefix = Exiv2::XmpProperties::prefix(schema);
        if (prefix.empty() && schema.find_last_of("/#") != schema.size() - 1)
        {
            prefix = Exiv2::XmpProperties::prefix(schema + "/");
        }
        return {prefix, text};
    }
    const size_t colon = text.find(':');
    if (colon == std::string::npos)
    {
        RefusePath();
    }
    return {text.substr(0, colon), text.substr(colon + 1)};
}

Exiv2::TypeId CollectionType(WideView name)
{
    return SameName(name, TEXT("xmpbag"))   ? Exiv2::xmpBag
           : SameName(name, TEXT("xmpseq")) ? Exiv2::xmpSeq
           : SameName(name, TEXT("xmpalt")) ? Exiv2::langAlt
                                            : Exiv2::invalidTypeId;
}

Property Locate(const QueryItem *items, size_t count)
{
    if (count == 0 || items[0].ItemKind != QueryItem::Kind::Name)
    {
        RefusePath();
    }
    const auto [prefix, name] = SplitName(items[0]);
    if (prefix.empty() || name.empty())
    {
        RefusePath();
    }
    Property property;
    property.Key = "Xmp." + prefix + "." + name;
    property.Collection = CollectionType(items[0].Collection);
    for (size_t i = 1; i < count; ++i)
    {
        const bool last = i + 1 == count;
        if (items[i].ItemKind == QueryItem::Kind::Number)
        {
            property.HasElement = last;
            property.Element = items[i].Number;
            if (!last)
            {
                property.Key += "[" + std::to_string(items[i].Number + 1) + "]";
            }
        }
        else if (last && items[i].Schema.empty() && items[i].Text.find(TEXT(':')) == WideText::npos)
        {
            property.Language = ToUtf8(items[i].Text);
        }
        else
        {
            const auto [childPrefix, childName] = SplitName(items[i]);
            property.Key += "/" + childPrefix + ":" + childName;
        }
    }
    return property;
}

std::vector<std::string> TextsOf(const Exiv2::Xmpdatum &datum, const Property &property)
{
    if (const auto *alternatives = dynamic_cast<const Exiv2::LangAltValue *>(&datum.value()))
    {
        const std::string wanted = property.Language.empty() ? "x-default" : property.Language;
        const auto found = alternatives->value_.find(wanted);
        if (found != alternatives->value_.end())
        {
            return {found->second};
        }
        return property.Language.empty() && !alternatives->value_.empty()
                   ? std::vector<std::string>{alternatives->value_.begin()->second}
                   : std::vector<std::string>();
    }
    std::vector<std::string> texts;
    for (long i = 0; i < datum.count(); ++i)
    {
        if (!property.HasElement || static_cast<ULONG>(i) == property.Element)
        {
            texts.push_back(datum.toString(i));
        }
    }
    return texts;
}

// "/" and "[" begin what belongs to a property.
bool IsWithin(const std::string &key, const std::string &outer)
{
    return key.compare(0, outer.size(), outer) == 0 &&
           (key.size() == outer.size() || key[outer.size()] == '/' || key[outer.size()] == '[');
}
} // namespace

struct XmpProperties::State
{
    Exiv2::XmpData Data;

    // By comparison, since making a key of a text fails for a schema that the library doesn't know.
    Exiv2::XmpData::iterator Find(const std::string &key)
    {
        return std::find_if(Data.begin(), Data.end(),
                            [&](const Exiv2::Xmpdatum &datum) { return datum.key() == key; });
    }

    bool Erase(const std::string &key)
    {
        bool erased = false;
        for (auto at = Data.begin(); at != Data.end();)
        {
            const bool within = IsWithin(at->key(), key);
            at = within ? Data.erase(at) : at + 1;
            erased = erased || within;
        }
        return erased;
    }

    void Put(const std::string &key, Exiv2::TypeId type, const std::vector<std::string> &texts,
             const std::string &language)
    {
        if (type == Exiv2::langAlt)
        {
            Exiv2::LangAltValue value;
            const auto found = Data.findKey(Exiv2::XmpKey(key));
            if (const auto *old =
                    found != Data.end() ? dynamic_cast<const Exiv2::LangAltValue *>(&found->value()) : nullptr;
                old != nullptr && !language.empty())
            {
                value = *old;
            }
            value.value_[language.empty() ? "x-default" : language] =
                texts.empty() ? std::string() : texts.front();
            Erase(key);
            Data.add(Exiv2::XmpKey(key), &value);
            return;
        }
        Erase(key);
        if (type == Exiv2::xmpBag || type == Exiv2::xmpSeq || type == Exiv2::xmpAlt)
        {
            Exiv2::XmpArrayValue value(type);
            for (const std::string &text : texts)
            {
                value.read(text);
            }
            Data.add(Exiv2::XmpKey(key), &value);
            return;
        }
        const Exiv2::XmpTextValue value(texts.empty() ? std::string() : texts.front());
        Data.add(Exiv2::XmpKey(key), &value);
    }
};

XmpProperties::XmpProperties() : m_state(new State)
{
    PrepareLibrary();
}

XmpProperties::~XmpProperties() = default;

void XmpProperties::Parse(const std::string &packet)
{
    try
    {
        const std::lock_guard lock(libraryLock);
        Exiv2::XmpData parsed;
        if (Exiv2::XmpParser::decode(parsed, packet) != 0)
        {
            return;
        }
        for (const Exiv2::Xmpdatum &datum : parsed)
        {
            if (m_state->Find(datum.key()) == m_state->Data.end())
            {
                m_state->Data.add(datum);
            }
        }
    }
    catch (const Exiv2::AnyError &)
    {
        // What was read up to here stays.
    }
}

std::string XmpProperties::TakeExtensionIdentifier()
{
    const auto found = m_state->Find("Xmp.xmpNote.HasExtendedXMP");
    if (found == m_state->Data.end())
    {
        return {};
    }
    const std::string identifier = found->toString();
    m_state->Data.erase(found);
    return identifier;
}

bool XmpProperties::IsEmpty() const noexcept
{
    return m_state->Data.empty();
}

std::vector<std::string> XmpProperties::Get(const QueryItem *items, size_t count) const
{
    return Translate(WINCODEC_ERR_INVALIDQUERYREQUEST, [&] {
        const Property property = Locate(items, count);
        const auto found = m_state->Data.findKey(Exiv2::XmpKey(property.Key));
        return found == m_state->Data.end() ? std::vector<std::string>() : TextsOf(*found, property);
    });
}

void XmpProperties::Set(const QueryItem *items, size_t count, const std::vector<std::string> &texts)
{
    Translate(WINCODEC_ERR_INVALIDQUERYREQUEST, [&] {
        const Property property = Locate(items, count);
        const Exiv2::XmpKey key(property.Key);
        Exiv2::TypeId type = property.Collection;
        if (type == Exiv2::invalidTypeId)
        {
            type = property.Key.find('/') == std::string::npos ? Exiv2::XmpProperties::propertyType(key)
                                                               : Exiv2::xmpText;
        }
        if (!property.Language.empty())
        {
            type = Exiv2::langAlt;
        }
        else if (texts.size() > 1 && type != Exiv2::xmpSeq && type != Exiv2::langAlt)
        {
            type = Exiv2::xmpBag;
        }
        if (!property.HasElement)
        {
            m_state->Put(property.Key, type, texts, property.Language);
            return;
        }
        Property whole = property;
        whole.HasElement = false;
        const auto found = m_state->Data.findKey(key);
        std::vector<std::string> elements =
            found == m_state->Data.end() ? std::vector<std::string>() : TextsOf(*found, whole);
        if (property.Element > elements.size())
        {
            RefusePath();
        }
        elements.resize(std::max<size_t>(elements.size(), property.Element + 1));
        elements[property.Element] = texts.empty() ? std::string() : texts.front();
        m_state->Put(property.Key, type == Exiv2::xmpSeq ? type : Exiv2::xmpBag, elements, {});
    });
}

bool XmpProperties::Remove(const QueryItem *items, size_t count)
{
    return Translate(WINCODEC_ERR_INVALIDQUERYREQUEST, [&] {
        const Property property = Locate(items, count);
        const auto found = m_state->Data.findKey(Exiv2::XmpKey(property.Key));
        if (found == m_state->Data.end() || (!property.HasElement && property.Language.empty()))
        {
            return m_state->Erase(property.Key);
        }
        const Exiv2::TypeId type = found->typeId();
        if (const auto *alternatives = dynamic_cast<const Exiv2::LangAltValue *>(&found->value()))
        {
            Exiv2::LangAltValue left(*alternatives);
            const bool removed = left.value_.erase(property.Language) > 0;
            m_state->Erase(property.Key);
            if (!left.value_.empty())
            {
                m_state->Data.add(Exiv2::XmpKey(property.Key), &left);
            }
            return removed;
        }
        Property whole = property;
        whole.HasElement = false;
        std::vector<std::string> elements = TextsOf(*found, whole);
        if (!property.HasElement || property.Element >= elements.size())
        {
            return false;
        }
        elements.erase(elements.begin() + property.Element);
        m_state->Erase(property.Key);
        if (!elements.empty())
        {
            m_state->Put(property.Key, type, elements, {});
        }
        return true;
    });
}

std::string XmpProperties::Write() const
{
    return Translate(WINCODEC_ERR_TOOMUCHMETADATA, [&] {
        std::string packet;
        if (Exiv2::XmpParser::encode(packet, m_state->Data,
                                     Exiv2::XmpParser::useCompactFormat | Exiv2::XmpParser::omitAllFormatting) !=
            0)
        {
            ThrowHresult(WINCODEC_ERR_INTERNALERROR);
        }
        return packet;
    });
}
