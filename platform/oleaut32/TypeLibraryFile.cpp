// The form: a header, the places of the descriptions, a directory of segments, and the segments. All numbers are
// little-endian; a name, a text or an identifier is given by its offset in its segment, -1 for none.
#include "platform/oleaut32/TypeLibraryFile.h"

#include "com/Hresult.h"
#include "platform/kernel32/Utf8.h"

#include <cstring>

namespace
{
constexpr DWORD Signature = 0x5446534D;
constexpr size_t HeaderSize = 0x54;
constexpr size_t DescriptionSize = 100;
constexpr DWORD HasHelpModule = 0x100;

enum Segment
{
    DescriptionSegment = 0,
    IdentifierSegment = 5,
    NameSegment = 7,
    TextSegment = 8,
    SegmentCount = 15
};

class Bytes
{
public:
    explicit Bytes(std::span<const BYTE> bytes) : m_bytes(bytes) {}

    Bytes At(size_t offset, size_t size) const
    {
        if (offset > m_bytes.size() || size > m_bytes.size() - offset)
        {
            ThrowHresult(TYPE_E_INVDATAREAD);
        }
        return Bytes(m_bytes.subspan(offset, size));
    }

    template <class Number>
    Number Read(size_t offset) const
    {
        Number number;
        std::memcpy(&number, At(offset, sizeof(number)).m_bytes.data(), sizeof(number));
        return number;
    }
    DWORD Dword(size_t offset) const { return Read<DWORD>(offset); }
    WORD Word(size_t offset) const { return Read<WORD>(offset); }

    WideText Text(size_t offset, size_t size) const
    {
        const auto text = At(offset, size).m_bytes;
        return FromUtf8(std::string_view(reinterpret_cast<const char *>(text.data()), text.size()));
    }

private:
    std::span<const BYTE> m_bytes;
};

constexpr DWORD None = 0xFFFFFFFF;

class Reader
{
public:
    explicit Reader(std::span<const BYTE> bytes) : m_file(bytes)
    {
        const size_t count = m_file.Dword(0x20);
        const size_t places = HeaderSize + (m_file.Dword(0x14) & HasHelpModule ? sizeof(DWORD) : 0);
        m_file.At(places, count * sizeof(DWORD));
        for (size_t i = 0; i < count; ++i)
        {
            m_descriptions.push_back(m_file.Dword(places + i * sizeof(DWORD)));
        }
        constexpr size_t entrySize = 4 * sizeof(DWORD);
        for (size_t i = 0; i < SegmentCount; ++i)
        {
            const size_t entry = places + count * sizeof(DWORD) + i * entrySize;
            const DWORD offset = m_file.Dword(entry);
            const DWORD size = m_file.Dword(entry + sizeof(DWORD));
            m_segments.push_back(offset == None ? Bytes({}) : m_file.At(offset, size));
        }
    }

    TypeLibraryContent Read() const
    {
        TypeLibraryContent content;
        content.attributes.guid = Identifier(m_file.Dword(0x08));
        content.attributes.lcid = m_file.Dword(0x0C);
        content.attributes.syskind = static_cast<SYSKIND>(m_file.Dword(0x14) & 0xF);
        content.attributes.wMajorVerNum = m_file.Word(0x18);
        content.attributes.wMinorVerNum = m_file.Word(0x1A);
        content.attributes.wLibFlags = m_file.Word(0x1C);
        content.help = Text(m_file.Dword(0x24));
        content.name = Name(m_file.Dword(0x38));
        m_pointerSize = content.attributes.syskind == SYS_WIN64 ? 8 : 4;
        for (const size_t place : m_descriptions)
        {
            content.types.push_back(ReadDescription(m_segments[DescriptionSegment].At(place, DescriptionSize)));
        }
        return content;
    }

private:
    GUID Identifier(DWORD offset) const
    {
        return offset == None ? GUID{} : m_segments[IdentifierSegment].Read<GUID>(offset);
    }
    WideText Text(DWORD offset) const
    {
        const Bytes &texts = m_segments[TextSegment];
        return offset == None ? WideText() : texts.Text(offset + sizeof(WORD), texts.Word(offset));
    }
    // Eight bytes of lookup, a doubleword of flags whose first byte is the length, and the name.
    WideText Name(DWORD offset) const
    {
        const Bytes &names = m_segments[NameSegment];
        return offset == None ? WideText() : names.Text(offset + 12, names.Read<BYTE>(offset + 8));
    }

    TypeDescription ReadDescription(const Bytes &base) const
    {
        TypeDescription type;
        type.kind = static_cast<TYPEKIND>(base.Dword(0) & 0xF);
        type.id = Identifier(base.Dword(44));
        type.flags = base.Word(48);
        type.name = Name(base.Dword(52));
        type.major = base.Word(56);
        type.minor = base.Word(58);
        type.help = Text(base.Dword(60));
        const size_t functions = base.Word(24);
        if (functions != 0)
        {
            type.functions = ReadFunctions(base.Dword(4), functions, base.Word(26));
        }
        return type;
    }

    // The records of functions and variables, and after them three tables: ids, names, and places of records.
    std::vector<TypeFunction> ReadFunctions(size_t records, size_t count, size_t variables) const
    {
        const size_t ids = records + sizeof(DWORD) + m_file.Dword(records);
        const size_t names = ids + (count + variables) * sizeof(DWORD);
        std::vector<TypeFunction> functions;
        size_t record = records + sizeof(DWORD);
        for (size_t i = 0; i < count; ++i)
        {
            const size_t size = m_file.Word(record);
            constexpr size_t parameterSize = 3 * sizeof(DWORD);
            const size_t parameters = m_file.Word(record + 20);
            if (size < 24 + parameters * parameterSize)
            {
                ThrowHresult(TYPE_E_INVDATAREAD);
            }
            TypeFunction function;
            function.id = static_cast<MEMBERID>(m_file.Dword(ids + i * sizeof(DWORD)));
            function.name = Name(m_file.Dword(names + i * sizeof(DWORD)));
            function.slot = (m_file.Word(record + 12) & ~1u) / m_pointerSize;
            for (size_t p = 0; p < parameters; ++p)
            {
                function.parameters.push_back(
                    Name(m_file.Dword(record + size - (parameters - p) * parameterSize + sizeof(DWORD))));
            }
            functions.push_back(std::move(function));
            record += size;
        }
        return functions;
    }

    Bytes m_file;
    std::vector<size_t> m_descriptions;
    std::vector<Bytes> m_segments;
    mutable size_t m_pointerSize = 4;
};
} // namespace

TypeLibraryContent ReadTypeLibrary(std::span<const BYTE> bytes)
{
    if (bytes.size() < HeaderSize || Bytes(bytes).Dword(0) != Signature)
    {
        ThrowHresult(TYPE_E_CANTLOADLIBRARY);
    }
    return Reader(bytes).Read();
}
