#include "loopback/ComparisonPage.h"

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
header{display:flex;flex-wrap:wrap;gap:.4rem 1.5rem;align-items:baseline;padding:1.4rem max(1.2rem,calc(50vw - 36rem));
border-bottom:1px solid var(--line);background:var(--card)}
h1{font-size:1.35rem;margin:0;letter-spacing:-.01em}
header p{margin:0;color:var(--soft)}
main{padding:1.6rem max(1.2rem,calc(50vw - 36rem)) 4rem;display:grid;gap:1.6rem;grid-template-columns:minmax(0,1fr)}
section{background:var(--card);border:1px solid var(--line);border-radius:12px;box-shadow:var(--shade);overflow:hidden}
h2{font-size:1.1rem;margin:0;text-align:left;padding:.9rem 1.1rem;overflow-wrap:anywhere}
.wide{overflow-x:auto}
table{border-collapse:collapse;width:100%;table-layout:fixed}
th,td{padding:.45rem 1.1rem;border-top:1px solid var(--line);text-align:left;vertical-align:top;overflow-wrap:anywhere}
thead th{vertical-align:bottom}
th[scope=row],.corner{width:9rem;font-weight:400;color:var(--soft)}
thead .corner,thead th{border-top:0}
.picture{display:block;aspect-ratio:3/2;background:var(--chip);border-radius:8px;overflow:hidden;margin-bottom:.5rem}
.picture img,.picture video{width:100%;height:100%;object-fit:contain;display:block}
.none{display:grid;place-items:center;height:100%;color:var(--soft)}
.missing{color:var(--soft)}
.bar{display:block;height:.4rem;border-radius:99px;background:var(--chip);margin-top:.25rem}
.bar i{display:block;height:100%;border-radius:99px;background:var(--accent);min-width:2px}
summary{cursor:pointer}summary b{font-weight:600}
.lost{color:var(--pink)}
dl{margin:.4rem 0 .2rem;font-size:.82rem;max-height:18rem;overflow:auto}dt{color:var(--soft)}dd{margin:0 0 .3rem}
.empty{text-align:center;color:var(--soft);padding:4rem 1rem}
.untitled{color:var(--soft);font-style:italic;font-weight:400}
@media(max-width:45rem){table{width:max-content}td,thead th{width:12.5rem;padding:.45rem .8rem}
th[scope=row],.corner{width:6rem;padding:.45rem .4rem .45rem .8rem;font-size:.85rem;position:sticky;left:0;background:var(--card);z-index:1}}
)";

constexpr std::array GroupNames = {"EXIF", "GPS", "IPTC", "XMP", "Comment"};

struct Upload
{
    const PhotoRecord *photo;
    std::shared_ptr<const PhotoFacts> facts;

    const MetadataGroup *Group(const std::string &name) const
    {
        const auto found = std::find_if(facts->groups.begin(), facts->groups.end(),
                                        [&](const MetadataGroup &group) { return group.name == name; });
        return found == facts->groups.end() ? nullptr : &*found;
    }
};

using Cell = std::function<std::string(const Upload &)>;

// The title, otherwise the file name without its extension: uploads of one picture may differ in format.
std::string NameOf(const PhotoRecord &photo)
{
    return !photo.title.empty() ? photo.title : photo.fileName.substr(0, photo.fileName.rfind('.'));
}

std::string Row(const std::string &name, const std::vector<Upload> &uploads, const Cell &cell)
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
    std::string html = "<thead><tr><td class=\"corner\"></td>";
    int number = 0;
    for (const auto &upload : uploads)
    {
        const std::string name =
            upload.photo->run.empty() ? fmt::format("Upload {}", ++number) : EscapeHtml(upload.photo->run);
        html += fmt::format("<th scope=\"col\" dir=\"auto\"><a class=\"picture\" href=\"/photo/{}\">{}</a>{}</th>",
                            upload.photo->id, PictureHtml(*upload.photo), name);
    }
    return html + "</tr></thead>";
}

std::string SizeCell(const Upload &upload, std::int64_t largest)
{
    return fmt::format("{}<span class=\"bar\" aria-hidden=\"true\"><i style=\"width:{:.1f}%\"></i></span>",
                       SizeText(upload.photo->size),
                       largest > 0 ? 100.0 * static_cast<double>(upload.photo->size) / static_cast<double>(largest)
                                   : 0.0);
}

// The number of different entries that all uploads together have in the group.
std::size_t EntriesOfAll(const std::vector<Upload> &uploads, const std::string &name)
{
    std::set<std::string> keys;
    for (const auto &upload : uploads)
    {
        if (const auto *group = upload.Group(name))
        {
            for (const auto &[key, value] : group->entries)
            {
                keys.insert(key);
            }
        }
    }
    return keys.size();
}

std::string GroupCell(const Upload &upload, const std::string &name, std::size_t ofAll)
{
    const auto *group = upload.Group(name);
    if (!group)
    {
        return "<span class=\"lost\">none</span>";
    }
    std::set<std::string> keys;
    std::string entries;
    for (const auto &[key, value] : group->entries)
    {
        keys.insert(key);
        entries += "<dt>" + EscapeHtml(key) + "</dt><dd dir=\"auto\">" + EscapeHtml(value) + "</dd>";
    }
    return fmt::format("<details><summary><b>{}</b>{}</summary><dl>{}</dl></details>", keys.size(),
                       keys.size() == ofAll ? "" : fmt::format(" of {}", ofAll), entries);
}

std::string Section(const std::vector<Upload> &uploads, int number)
{
    std::int64_t largest = 0;
    for (const auto &upload : uploads)
    {
        largest = std::max(largest, upload.photo->size);
    }
    std::string rows =
        Row("Size", uploads, [&](const Upload &upload) { return SizeCell(upload, largest); }) +
        Row("Type", uploads, [](const Upload &upload) { return EscapeHtml(upload.photo->detectedType); }) +
        Row("Pixels", uploads,
            [](const Upload &upload) {
                return upload.facts->width > 0 ? fmt::format("{} × {}", upload.facts->width, upload.facts->height)
                                               : std::string("<span class=\"missing\">unknown</span>");
            }) +
        Row("Colour profile", uploads, [](const Upload &upload) {
            return upload.facts->profileSize > 0 ? SizeText(static_cast<std::int64_t>(upload.facts->profileSize))
                                                 : std::string("<span class=\"missing\">none in the file</span>");
        });
    for (const std::string name : GroupNames)
    {
        if (const std::size_t ofAll = EntriesOfAll(uploads, name))
        {
            rows += Row(name, uploads, [&](const Upload &upload) { return GroupCell(upload, name, ofAll); });
        }
    }
    return fmt::format("<section aria-labelledby=\"title-{0}\"><h2 id=\"title-{0}\" dir=\"auto\">{1}</h2>"
                       "<div class=\"wide\" role=\"region\" tabindex=\"0\" "
                       "aria-labelledby=\"title-{0}\"><table>{2}<tbody>{3}</tbody></table></div></section>\n",
                       number, EscapeHtml(NameOf(*uploads.front().photo)), HeadRow(uploads), rows);
}

} // namespace

std::string ComparisonPage(const std::vector<PhotoRecord> &photos, const FactsOf &facts)
{
    // In the order in which the titles first appear.
    std::vector<std::vector<Upload>> comparisons;
    for (auto photo = photos.rbegin(); photo != photos.rend(); ++photo)
    {
        const auto same = std::find_if(comparisons.begin(), comparisons.end(), [&](const auto &uploads) {
            return NameOf(*uploads.front().photo) == NameOf(*photo);
        });
        auto &uploads = same == comparisons.end() ? comparisons.emplace_back() : *same;
        uploads.push_back({&*photo, facts(*photo)});
    }
    std::erase_if(comparisons, [](const auto &uploads) { return uploads.size() < 2; });
    std::string main;
    int number = 0;
    for (const auto &uploads : comparisons)
    {
        main += Section(uploads, ++number);
    }
    if (main.empty())
    {
        main = "<div class=\"empty\"><h2>Nothing to compare yet</h2><p>Photos that were uploaded more than once "
               "under the same title appear here side by side.</p></div>";
    }
    return PageFrame({"Uploads side by side", Style,
                      "<h1>Uploads side by side</h1><p>What came through each time, the earliest on the left</p>"
                      "<p><a href=\"/\">← All photos</a></p>",
                      main});
}

} // namespace loopback
