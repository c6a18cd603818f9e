#include "platform/kernel32/ResourceSection.h"

#include "com/AsciiText.h"
#include "com/WideText.h"
#include "platform/kernel32/LoadedModules.h"

#include <elf.h>
#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <mutex>
#include <vector>

namespace
{
class ElfFile
{
public:
    explicit ElfFile(const std::string &path) : m_file(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~ElfFile()
    {
        if (m_file >= 0)
        {
            close(m_file);
        }
    }
    ElfFile(const ElfFile &) = delete;
    ElfFile &operator=(const ElfFile &) = delete;

    explicit operator bool() const { return m_file >= 0; }

    bool Read(void *target, size_t size, uint64_t offset) const
    {
        return pread(m_file, target, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
    }

private:
    int m_file;
};

DWORD ReadDword(const BYTE *at)
{
    DWORD value = 0;
    std::memcpy(&value, at, sizeof(value));
    return value;
}

// A resource's type or name, as a caller or an entry gives it: a number or a text.
struct Identifier
{
    bool isNumber = false;
    WORD number = 0;
    WideView text;

    bool operator==(const Identifier &other) const
    {
        return isNumber == other.isNumber && number == other.number && EqualsIgnoringCase(text, other.text);
    }
};

Identifier IdentifierOf(const WCHAR *given)
{
    if (IS_INTRESOURCE(given))
    {
        return {true, static_cast<WORD>(reinterpret_cast<ULONG_PTR>(given)), {}};
    }
    const WideView text(given);
    if (text.size() > 1 && text[0] == '#')
    {
        unsigned number = 0;
        for (WCHAR c : text.substr(1))
        {
            number = c >= '0' && c <= '9' && number <= 0xFFFF ? number * 10 + (c - '0') : 0x10000;
        }
        if (number <= 0xFFFF)
        {
            return {true, static_cast<WORD>(number), {}};
        }
    }
    return {false, 0, text};
}

// Reads an entry's type or name at `at` and moves `at` past it; nullopt if it doesn't end before `end`.
std::optional<Identifier> TakeIdentifier(const BYTE *&at, const BYTE *end)
{
    const auto *const units = reinterpret_cast<const WCHAR *>(at);
    const size_t left = static_cast<size_t>(end - at) / sizeof(WCHAR);
    if (left >= 2 && units[0] == 0xFFFF)
    {
        at += 2 * sizeof(WCHAR);
        return Identifier{true, static_cast<WORD>(units[1]), {}};
    }
    const WideView text(units, left);
    const size_t length = text.find(WCHAR{0});
    if (length == WideView::npos)
    {
        return std::nullopt;
    }
    at += (length + 1) * sizeof(WCHAR);
    return Identifier{false, 0, text.substr(0, length)};
}

struct CachedSection
{
    std::string path;
    unsigned long long unloads = 0;
    std::span<const BYTE> resources;
};
} // namespace

std::optional<ResourceSection> FindResourceSection(const std::string &path, int &error)
{
    error = 0;
    const ElfFile file(path);
    if (!file)
    {
        error = errno;
        return std::nullopt;
    }
    Elf64_Ehdr header;
    if (!file.Read(&header, sizeof(header), 0) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_shentsize != sizeof(Elf64_Shdr) ||
        header.e_shstrndx >= header.e_shnum)
    {
        return std::nullopt;
    }
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    if (!file.Read(sections.data(), sections.size() * sizeof(Elf64_Shdr), header.e_shoff))
    {
        return std::nullopt;
    }
    constexpr char wanted[] = ".rsrc";
    for (const Elf64_Shdr &section : sections)
    {
        char name[sizeof(wanted)] = {};
        if (section.sh_type == SHT_PROGBITS &&
            file.Read(name, sizeof(name), sections[header.e_shstrndx].sh_offset + section.sh_name) &&
            std::memcmp(name, wanted, sizeof(wanted)) == 0)
        {
            return ResourceSection{section.sh_addr, section.sh_offset, section.sh_size};
        }
    }
    return std::nullopt;
}

ResourceMatch FindResourceEntry(std::span<const BYTE> resources, const WCHAR *type, const WCHAR *name)
{
    constexpr size_t sizes = 2 * sizeof(DWORD);
    const Identifier wantedType = IdentifierOf(type);
    const Identifier wantedName = IdentifierOf(name);
    ResourceMatch match;
    for (size_t offset = 0; offset + sizes <= resources.size();)
    {
        const BYTE *const entry = resources.data() + offset;
        const size_t dataSize = ReadDword(entry);
        const size_t headerSize = ReadDword(entry + sizeof(DWORD));
        if (headerSize < sizes || headerSize + dataSize > resources.size() - offset)
        {
            break;
        }
        const BYTE *at = entry + sizes;
        const BYTE *const end = entry + headerSize;
        const auto entryType = TakeIdentifier(at, end);
        const auto entryName = entryType ? TakeIdentifier(at, end) : std::nullopt;
        if (entryName && *entryType == wantedType)
        {
            match.typeExists = true;
            if (*entryName == wantedName)
            {
                match.entry = entry;
                break;
            }
        }
        offset += (headerSize + dataSize + 3) & ~size_t{3};
    }
    return match;
}

std::span<const BYTE> ResourceEntryData(const BYTE *entry)
{
    return {entry + ReadDword(entry + sizeof(DWORD)), ReadDword(entry)};
}

std::span<const BYTE> ResourcesOfModule(HMODULE module)
{
    static std::mutex lock;
    static std::map<HMODULE, CachedSection> cache;

    const auto found = FindModule(module);
    if (!found)
    {
        return {};
    }
    const std::lock_guard guard(lock);
    CachedSection &cached = cache[found->handle];
    if (cached.path != found->path || cached.unloads != found->unloads)
    {
        int error = 0;
        const auto section = FindResourceSection(found->path, error);
        cached = {found->path, found->unloads, {}};
        if (section && section->address != 0)
        {
            cached.resources = {reinterpret_cast<const BYTE *>(found->bias + section->address), section->size};
        }
    }
    return cached.resources;
}
