// Compiled resources as they lie in the ELF section ".rsrc": the content of one .res file, a row of
// entries, each a header (data size, header size, type, name, language ...) and its data.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

// Where a module's file has its resources: at address once it is loaded, at offset in the file.
struct ResourceSection
{
    uint64_t address = 0;
    uint64_t offset = 0;
    uint64_t size = 0;
};

// Reads the file's section headers. Without such a section, or if the file is no 64-bit ELF file,
// there is none; error then says why in the system's own errno, or is 0 if the file could be read.
std::optional<ResourceSection> FindResourceSection(const std::string &path, int &error);

struct ResourceMatch
{
    // The entry's header; its data follow it.
    const BYTE *entry = nullptr;
    // Whether an entry of the type was there, if none was found.
    bool typeExists = false;
};

// The first entry of that type and name, in whatever language. Both are numbers (MAKEINTRESOURCE),
// texts, or texts of the form "#123"; texts are compared without regard to case.
ResourceMatch FindResourceEntry(std::span<const BYTE> resources, const WCHAR *type, const WCHAR *name);

std::span<const BYTE> ResourceEntryData(const BYTE *entry);

// The resources of a loaded module, null being the program; empty if it has none or there is no
// such module. Valid while the module is loaded.
std::span<const BYTE> ResourcesOfModule(HMODULE module);
