// A parser of untrusted bytes under trial: well-formed samples to spoil, and the call that reads the result.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct FuzzTarget
{
    const char *Name;
    std::vector<std::string> (*Samples)();

    // Reads the bytes. The parser may report an error; if it breaks a promise, Read calls Broken.
    void (*Read)(std::string_view bytes);
};

// Call this if a promise doesn't hold for the current bytes. Aborts the program, as a memory error does.
[[noreturn]] void Broken(const char *promise);

extern const FuzzTarget JpegFiles;
extern const FuzzTarget MetadataPaths;
extern const FuzzTarget RegistryFiles;
extern const FuzzTarget AccountStreams;
extern const FuzzTarget Addresses;
extern const FuzzTarget Replies;
extern const FuzzTarget TaskDialogs;
extern const FuzzTarget MultipartBodies;
extern const FuzzTarget Forms;
