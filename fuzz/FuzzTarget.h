// A reader of foreign bytes under trial: well-formed samples to spoil, and what to do with the result.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct FuzzTarget
{
    const char *Name;
    std::vector<std::string> (*Samples)();

    // Reads the bytes. Failures that the reader tells of are well; a broken promise is told to Broken.
    void (*Read)(std::string_view bytes);
};

// A promise doesn't hold for the bytes at hand: ends the program, as a fault of memory does.
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
