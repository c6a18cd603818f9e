#include "host/PictureItems.h"

#include "com/WholeFile.h"
#include "host/FileNames.h"
#include "host/TextEncodings.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace fs = std::filesystem;

namespace
{
// Sorted. JPEG, GIF and PNG can be sent as they are on disk; TIFF, WebP, HEIF, the camera makers' raw
// formats and the rest are decoded.
constexpr auto Pictures = std::to_array<std::string_view>({
    "3fr",  "arw", "avif", "bmp",  "cap", "cr2",  "cr3", "crw", "dcr", "dng", "erf", "exif", "fff",  "gif", "heic",
    "heif", "hif", "iiq",  "jfif", "jpe", "jpeg", "jpg", "k25", "kdc", "mef", "mos", "mrw",  "nef",  "nrw", "orf",
    "pef",  "png", "psd",  "raf",  "raw", "rw2",  "rwl", "sr2", "srf", "srw", "tif", "tiff", "webp", "x3f",
});
static_assert(std::is_sorted(Pictures.begin(), Pictures.end()));

constexpr auto Sidecars = std::to_array<std::string_view>({"dop", "pp3", "thm", "xmp"});
static_assert(std::is_sorted(Sidecars.begin(), Sidecars.end()));

// An extension without its dot; case doesn't matter.
template <size_t Count>
bool IsAmong(const std::array<std::string_view, Count> &sorted, std::string_view extension)
{
    return std::ranges::binary_search(sorted, std::string_view(LowerAscii(extension)));
}

// The plug-in passes lengths to the web client as unsigned 32-bit numbers of bytes.
constexpr uintmax_t LargestFile = 0xFFFFFFFF;

// Why the file can't be published; nullopt if it can, as far as its first look shows.
std::optional<std::string> FaultOf(const fs::path &file)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found)
    {
        if (fs::is_symlink(fs::symlink_status(file, error)))
        {
            return "is a link to a file that isn't there; mend the link or name the file itself";
        }
        return "isn't there; check the name, or whether it was moved";
    }
    if (error)
    {
        return "can't be looked at: " + FileErrorWords(error);
    }
    if (status.type() != fs::file_type::regular)
    {
        return "is not an ordinary file";
    }
    if (const std::error_code fault = TryToRead(file))
    {
        return "can't be read: " + FileErrorWords(fault) + "; check its permissions";
    }
    const uintmax_t size = fs::file_size(file, error);
    if (!error && size == 0)
    {
        return "is empty (0 bytes); copy it again from its source";
    }
    if (!error && size > LargestFile)
    {
        return "is " + std::to_string(size) + " bytes long; files of 4 GiB and more can't be published";
    }
    return std::nullopt;
}

class Collector
{
public:
    Collector(bool recursive, const std::function<void()> &looksAtFile)
        : m_recursive(recursive), m_looksAtFile(looksAtFile)
    {
    }

    void Take(const fs::path &argument)
    {
        std::error_code error;
        if (!fs::is_directory(argument, error))
        {
            TakeNamedFile(argument);
            return;
        }
        if (!m_recursive)
        {
            m_collection.folders.push_back(argument);
            return;
        }
        const size_t before = m_seen.size() + m_collection.refused.size();
        const bool walked = Walk(argument);
        if (walked && m_seen.size() + m_collection.refused.size() == before)
        {
            m_collection.empty.push_back(argument);
        }
    }

    ItemCollection Finish() { return std::move(m_collection); }

private:
    std::optional<std::string> Look(const fs::path &file) const
    {
        if (m_looksAtFile)
        {
            m_looksAtFile();
        }
        return FaultOf(file);
    }

    void TakeNamedFile(const fs::path &file)
    {
        const std::string extension = ExtensionOf(file);
        if (auto fault = Look(file))
        {
            m_collection.refused.push_back({file, *fault});
        }
        else if (IsAmong(Sidecars, extension))
        {
            m_collection.passedOver.push_back(file);
        }
        else if (extension.empty())
        {
            m_collection.refused.push_back(
                {file, "has no extension to tell what kind of picture it is; give it one, such as .jpg"});
        }
        else if (!IsAmong(Pictures, extension))
        {
            m_collection.refused.push_back(
                {file, "is not a supported picture type (." + extension + "); if it is a picture, rename it"});
        }
        else
        {
            Add(file, extension);
        }
    }

    void TakeFoundFile(const fs::path &file)
    {
        if (!IsAmong(Pictures, ExtensionOf(file)))
        {
            return;
        }
        if (auto fault = Look(file))
        {
            m_collection.refused.push_back({file, *fault});
            return;
        }
        Add(file, ExtensionOf(file));
    }

    void Add(const fs::path &file, const std::string &extension)
    {
        const fs::path identity = IdentityOf(file);
        if (!m_seen.insert(identity).second)
        {
            return;
        }
        std::error_code error;
        const fs::path whole = fs::absolute(file, error);
        // A.jpg and A.JPG are two pictures, if the system has two such files.
        std::vector<size_t> &siblings = m_byStem[identity.parent_path() / identity.stem()];
        const auto item = std::find_if(siblings.begin(), siblings.end(), [&](size_t index) {
            const auto &known = m_collection.items[index].extensions;
            return std::none_of(known.begin(), known.end(), [&](const std::string &each) {
                return LowerAscii(each) == LowerAscii(extension);
            });
        });
        if (item != siblings.end())
        {
            m_collection.items[*item].extensions.push_back(extension);
            return;
        }
        siblings.push_back(m_collection.items.size());
        m_collection.items.push_back(
            {whole.parent_path() / whole.stem(), {extension}, file.parent_path() / file.stem()});
    }

    // Returns false if the folder was walked before or can't be read.
    bool Walk(const fs::path &folder)
    {
        std::error_code error;
        const fs::path real = fs::canonical(folder, error);
        if (error || !m_walked.insert(real).second)
        {
            return false;
        }
        std::vector<std::pair<std::string, fs::path>> entries; // with their names, for the sorting
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        {
            entries.emplace_back(NameBytes(entry->path().filename()), entry->path());
        }
        if (error)
        {
            m_collection.refused.push_back({folder, "can't be listed: " + FileErrorWords(error)});
            return false;
        }
        std::sort(entries.begin(), entries.end(),
                  [](const auto &a, const auto &b) { return NaturallyBefore(a.first, b.first); });
        for (const auto &[name, entry] : entries)
        {
            if (IsHidden(entry))
            {
                continue;
            }
            fs::is_directory(entry, error) ? void(Walk(entry)) : TakeFoundFile(entry);
        }
        return true;
    }

    const bool m_recursive;
    const std::function<void()> &m_looksAtFile;
    ItemCollection m_collection;
    std::map<fs::path, std::vector<size_t>> m_byStem; // the items of each
    std::set<fs::path> m_seen;
    std::set<fs::path> m_walked;
};
} // namespace

fs::path PictureItem::FileWith(const std::string &extension) const
{
    fs::path file = stem;
    return file += "." + extension;
}

std::vector<fs::path> PictureItem::Files() const
{
    std::vector<fs::path> files;
    std::ranges::transform(extensions, std::back_inserter(files),
                           [&](const auto &each) { return FileWith(each); });
    return files;
}

fs::path PictureItem::TypedFile() const
{
    fs::path file = typedStem.empty() ? stem : typedStem;
    return file += "." + extensions.front();
}

std::string PictureItem::AsTyped(std::string text) const
{
    const std::string whole = Utf8FromText(TextOfPath(stem)) + ".";
    const std::string typed = Utf8FromText(TextOfPath(typedStem)) + ".";
    const size_t at = typedStem.empty() ? text.npos : text.find(whole);
    return at == text.npos ? text : text.replace(at, whole.size(), typed);
}

ItemCollection CollectItems(const std::vector<fs::path> &arguments, bool recursive,
                            const std::function<void()> &looksAtFile)
{
    Collector collector(recursive, looksAtFile);
    for (const fs::path &argument : arguments)
    {
        collector.Take(argument);
    }
    return collector.Finish();
}

void TellOfOtherFiles(const ItemCollection &collection,
                      const std::function<void(int level, const std::string &text)> &tell)
{
    for (const RefusedFile &refused : collection.refused)
    {
        tell(3, ShownPath(refused.path) + " " + refused.reason + ".");
    }
    for (const auto &folder : collection.empty)
    {
        tell(2, ShownPath(folder) + " contains no pictures (hidden files are skipped).");
    }
    for (const auto &path : collection.passedOver)
    {
        tell(1, ShownPath(path) + " belongs to a picture and isn't published by itself.");
    }
}

std::span<const std::string_view> PictureExtensions()
{
    return Pictures;
}
