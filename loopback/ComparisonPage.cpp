#include "loopback/Gallery.h"

#include "loopback/PageFrame.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <set>

namespace loopback
{

namespace
{

constexpr char Style[] = R"(
main{display:grid;gap:1.6rem;grid-template-columns:minmax(0,1fr)}
section{overflow:hidden}h2{font-size:1.1rem;padding:.9rem 1.1rem}
.wide{overflow-x:auto}table{table-layout:fixed;font-size:inherit}
th,td,td:first-child{padding:.45rem 1.1rem;border-top:1px solid var(--line);text-align:left;vertical-align:top;width:auto;color:inherit}
thead th{vertical-align:bottom;border-top:0}
th:first-child{width:9rem;font-weight:400;color:var(--soft)}
.picture{display:block;aspect-ratio:3/2;background:var(--chip);border-radius:8px;overflow:hidden;margin-bottom:.5rem}
.picture img{width:100%;height:100%;object-fit:contain;display:block}
summary,details summary{padding:0;font-weight:400}.lost{color:var(--pink)}.soft{color:var(--soft)}
details p{margin:.3rem 0;font-size:.82rem}
@media(max-width:45rem){table{width:max-content}td,thead th{width:12.5rem;padding:.45rem .8rem}
th:first-child{width:6rem;padding:.45rem .4rem .45rem .8rem;font-size:.85rem;position:sticky;left:0;background:var(--card);z-index:1}}
)";

constexpr char Reference[] = "As on disk";
constexpr std::array GroupNames = {"EXIF", "GPS", "IPTC", "XMP", "Comment"};

struct Upload
{
    const PhotoRecord *photo;
    PhotoFacts facts;

    // The names of the group's entries.
    std::set<std::string> Keys(std::string_view group) const
    {
        std::set<std::string> keys;
        for (const auto &[name, entries] : facts.groups)
        {
            for (const auto &entry : entries)
            {
                if (name == group)
                {
                    keys.insert(entry.first);
                }
            }
        }
        return keys;
    }
};

// The title, otherwise the file name without its extension: uploads of one picture may differ in format.
std::string NameOf(const PhotoRecord &photo)
{
    return !photo.title.empty() ? photo.title : photo.fileName.substr(0, photo.fileName.rfind('.'));
}

std::string Row(const std::string &name, const std::vector<Upload> &uploads,
                const std::function<std::string(const Upload &)> &cell)
{
    std::string html = "<tr><th scope=\"row\">" + name + "</th>";
    for (const auto &upload : uploads)
    {
        html += "<td>" + cell(upload) + "</td>";
    }
    return html + "</tr>\n";
}

std::string HeadRow(const std::vector<Upload> &uploads)
{
    std::string html = "<thead><tr><th></th>";
    for (const auto &[photo, facts] : uploads)
    {
        html += fmt::format("<th scope=\"col\" dir=\"auto\"><a class=\"picture\" href=\"/photo/{}\">{}</a>{}</th>",
                            photo->id, PictureHtml(*photo),
                            photo->run.empty() ? "Upload without a name" : EscapeMarkup(photo->run));
    }
    return html + "</tr></thead>";
}

// The names that are in one set and not in the other.
std::string Missing(const std::set<std::string> &from, const std::set<std::string> &in, const char *heading)
{
    std::string names;
    for (const auto &name : from)
    {
        names += in.contains(name) ? "" : (names.empty() ? "" : ", ") + EscapeMarkup(name);
    }
    return names.empty() ? "" : fmt::format("<p><b>{}</b> {}</p>", heading, names);
}

// `reference` is null for the reference itself and where there is none.
std::string GroupCell(const std::set<std::string> &keys, const std::set<std::string> *reference)
{
    if (!reference || *reference == keys)
    {
        return keys.empty() ? "<span class=\"soft\">none in the file</span>"
                            : fmt::format("{}{}", reference ? "all " : "", keys.size());
    }
    const auto kept =
        std::count_if(keys.begin(), keys.end(), [&](const auto &key) { return reference->contains(key); });
    const auto lost = static_cast<std::ptrdiff_t>(reference->size()) - kept;
    const auto added = static_cast<std::ptrdiff_t>(keys.size()) - kept;
    return fmt::format(
        "<details><summary>{}{}{}</summary>{}{}</details>",
        lost == 0 ? std::string(reference->empty() ? "" : "all kept")
                  : fmt::format("<span class=\"lost\">{} of {} kept</span>", kept, reference->size()),
        added > 0 && !reference->empty() ? ", " : "", added > 0 ? fmt::format("{} added", added) : "",
        Missing(*reference, keys, "Not sent:"), Missing(keys, *reference, "Added:"));
}

// The first upload is the reference if it is called so.
std::string Section(const std::vector<Upload> &uploads, int number)
{
    const bool isMeasured = uploads.front().photo->run == Reference;
    std::string rows =
        Row("Size", uploads, [](const Upload &upload) { return SizeText(upload.photo->size); }) +
        Row("Type", uploads, [](const Upload &upload) { return EscapeMarkup(upload.photo->detectedType); }) +
        Row("Pixels", uploads,
            [](const Upload &upload) { return fmt::format("{} × {}", upload.facts.width, upload.facts.height); }) +
        Row("Colour profile", uploads, [](const Upload &upload) {
            return upload.facts.profileSize > 0 ? SizeText(static_cast<std::int64_t>(upload.facts.profileSize))
                                                : std::string("<span class=\"soft\">none in the file</span>");
        });
    for (const std::string name : GroupNames)
    {
        const auto reference = uploads.front().Keys(name);
        if (std::any_of(uploads.begin(), uploads.end(),
                        [&](const auto &upload) { return !upload.Keys(name).empty(); }))
        {
            rows += Row(name, uploads, [&](const Upload &upload) {
                return &upload == &uploads.front()
                           ? GroupCell(reference, nullptr)
                           : GroupCell(upload.Keys(name), isMeasured ? &reference : nullptr);
            });
        }
    }
    return fmt::format(
        "<section class=\"panel\" aria-labelledby=\"title-{0}\"><h2 id=\"title-{0}\" dir=\"auto\">{1}</h2>"
        "<div class=\"wide\" role=\"region\" tabindex=\"0\" aria-labelledby=\"title-{0}\"><table>{2}"
        "<tbody>{3}</tbody></table></div></section>\n",
        number, EscapeMarkup(NameOf(*uploads.front().photo)), HeadRow(uploads), rows);
}

} // namespace

std::string ComparisonPage(const std::vector<PhotoRecord> &photos, const FactsOf &facts)
{
    // One list for each title, in the order of the newest upload of each.
    std::vector<std::vector<Upload>> comparisons;
    for (const auto &photo : photos)
    {
        const auto same = std::find_if(comparisons.begin(), comparisons.end(), [&](const auto &uploads) {
            return NameOf(*uploads.front().photo) == NameOf(photo);
        });
        auto &uploads = same == comparisons.end() ? comparisons.emplace_back() : *same;
        if (std::none_of(uploads.begin(), uploads.end(),
                         [&](const auto &upload) { return upload.photo->run == photo.run; }))
        {
            uploads.push_back({&photo, facts(photo)});
        }
    }
    std::erase_if(comparisons, [](const auto &uploads) { return uploads.size() < 2; });
    std::string main;
    int number = 0;
    for (auto &uploads : comparisons)
    {
        std::stable_partition(uploads.begin(), uploads.end(),
                              [](const auto &upload) { return upload.photo->run == Reference; });
        main += Section(uploads, ++number);
    }
    if (main.empty())
    {
        main = "<div class=\"empty\"><h2>Nothing to compare yet</h2><p>Photos that were uploaded under the same "
               "title "
               "in more than one run appear here side by side.</p></div>";
    }
    return GalleryFrame(
        "Uploads side by side",
        "<h1>Uploads side by side</h1><p>What arrived, compared with the file as it is on disk; the "
        "newest first</p><p><a href=\"/\">← All photos</a></p>",
        main, Style);
}

} // namespace loopback
