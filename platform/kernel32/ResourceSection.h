// Compiled resources in the ELF section ".rsrc": the content of one .res file, that is a sequence of
// entries, each a header (data size, header size, type, name, language ...) followed by its data.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

// Where a module's resources are: at `address` (before the module's bias) in memory, at `offset` in its file.
struct ResourceSection
{
    uint64_t address = 0;
    uint64_t offset = 0;
    uint64_t size = 0;
};

// Reads the file's section headers. Returns nullopt if there is no such section or the file is no 64-bit
// ELF file (error is then 0), or if it can't be read (error is then the errno value).
std::optional<ResourceSection> FindResourceSection(const std::string &path, int &error);

struct ResourceMatch
{
    // The entry's header; its data follow it.
    const BYTE *entry = nullptr;
    // If no entry matched: whether there is any entry of the type.
    bool typeExists = false;
};

// The first entry of that type and name, in any language. Type and name are numbers (MAKEINTRESOURCE),
// texts, or texts of the form "#123"; texts are compared without regard to case.
ResourceMatch FindResourceEntry(std::span<const BYTE> resources, const WCHAR *type, const WCHAR *name);

std::span<const BYTE> ResourceEntryData(const BYTE *entry);

// The resources of a loaded module; null means the program. Empty if it has none or there is no such
// module. Valid while the module is loaded.
std::span<const BYTE> ResourcesOfModule(HMODULE module);
