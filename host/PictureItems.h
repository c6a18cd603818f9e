// Makes the items of a run from the paths that a user gives. Files that are bound to fail are refused
// here, with the reason, so that the run isn't held up by them.
#pragma once

#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// One picture. Its files lie in one folder and differ only in their extension. Extensions that differ only
// in case belong to different pictures, since the plug-in can't tell them apart.
struct PictureItem
{
    std::filesystem::path stem;          // absolute, without the dot and extension
    std::vector<std::string> extensions; // without dots, as NameBytes, in the order of their discovery
    std::filesystem::path typedStem{};   // as the user wrote it, perhaps relative; for messages. Empty: as stem

    std::filesystem::path File(size_t index) const { return FileWith(extensions[index]); }
    std::filesystem::path FileWith(const std::string &extension) const;
    std::vector<std::filesystem::path> Files() const;

    // The first file, which stands for the picture, as the user wrote it.
    std::filesystem::path TypedFile() const;

    // The text with the whole path of this picture replaced by what the user wrote.
    std::string AsTyped(std::string text) const;
};

struct RefusedFile
{
    std::filesystem::path path; // as given, or as found in a folder
    std::string reason;         // what is wrong and what to do, UTF-8
    std::string photo{};        // the service's id, of a picture that was published before
};

struct ItemCollection
{
    std::vector<PictureItem> items;
    std::vector<RefusedFile> refused;              // count as pictures that weren't published
    std::vector<RefusedFile> undecided;            // may have been published before
    std::vector<RefusedFile> leftOut;              // were published before; reason tells when
    std::vector<RefusedFile> copies;               // of other items; reason tells of which
    std::vector<std::filesystem::path> folders;    // given although recursive is false
    std::vector<std::filesystem::path> empty;      // folders without pictures
    std::vector<std::filesystem::path> passedOver; // sidecars named beside pictures
};

// Items in the order of the arguments; within a folder in natural order, subfolders included. A file
// that is named twice, also through a link to its folder, is taken once. Hidden files, hidden folders
// and files without a picture's extension are left out of a walk, and links back into a folder that
// was walked are not followed. looksAtFile, unless it is null, is called before each file that is looked at.
ItemCollection CollectItems(const std::vector<std::filesystem::path> &arguments, bool recursive,
                            const std::function<void()> &looksAtFile = nullptr);

// Says which of the files that were named aren't pictures to publish; levels as in WriteLogEntry.
void TellOfOtherFiles(const ItemCollection &collection,
                      const std::function<void(int level, const std::string &text)> &tell);

// The file name extensions by which pictures are known: without dots, in lower case and sorted.
std::span<const std::string_view> PictureExtensions();
