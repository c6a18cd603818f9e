#include "loopback/Gallery.h"

#include "loopback/FormFields.h"
#include "loopback/PageFrame.h"
#include "loopback/PhotoIndex.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <array>
#include <ctime>

namespace loopback
{

namespace
{

const std::string Style = R"(
header{display:flex;flex-wrap:wrap;gap:.4rem 1.5rem;align-items:baseline;padding:1.4rem max(1.2rem,calc(50vw - 36rem));
border-bottom:1px solid var(--line);background:var(--card)}
h1{font-size:1.35rem;margin:0;letter-spacing:-.01em}h1 i{font-style:normal;color:var(--pink)}
header p{margin:0;color:var(--soft)}header .demo{flex-basis:100%;font-size:.87rem}
main{padding:1.6rem max(1.2rem,calc(50vw - 36rem)) 4rem}
.grid{display:grid;grid-template-columns:repeat(auto-fill,minmax(17.5rem,1fr));gap:1.3rem}
.card{background:var(--card);border:1px solid var(--line);border-radius:12px;overflow:hidden;box-shadow:var(--shade);
display:flex;flex-direction:column}
.card .picture{display:block;aspect-ratio:3/2;min-height:0;overflow:hidden;background:var(--chip)}
.picture img{width:100%;height:100%;object-fit:cover;display:block}
.none{display:grid;place-items:center;height:100%;color:var(--soft)}
.text{padding:.9rem 1rem 1rem;display:flex;flex-direction:column;gap:.55rem;flex:1}
h2{font-size:1.02rem;line-height:1.3;margin:0;overflow-wrap:anywhere}h2 a{color:inherit}
.text p{margin:0;color:var(--soft);overflow-wrap:anywhere;white-space:pre-line}
.card .text p{display:-webkit-box;-webkit-line-clamp:4;-webkit-box-orient:vertical;overflow:hidden}
.untitled{color:var(--soft);font-style:italic;font-weight:400}
ul.tags{list-style:none;display:flex;flex-wrap:wrap;gap:.3rem;margin:0;padding:0}
.tags li{background:var(--chip);border-radius:99px;padding:.05rem .6rem;font-size:.85rem;overflow-wrap:anywhere;white-space:pre-wrap}
.facts{display:flex;flex-wrap:wrap;gap:.15rem .9rem;margin-top:auto;padding-top:.55rem;border-top:1px solid var(--line);
font-size:.83rem;color:var(--soft)}
.facts b{font-weight:600;color:var(--ink)}
.empty{text-align:center;color:var(--soft);padding:5rem 1rem}
.photo{display:grid;gap:1.5rem;grid-template-columns:minmax(0,1fr)}
@media(min-width:60rem){.photo{grid-template-columns:minmax(0,3fr) minmax(0,2fr);align-items:start}}
.photo>.picture img{max-height:80vh;object-fit:contain;background:var(--chip);border-radius:12px}
.panel{background:var(--card);border:1px solid var(--line);border-radius:12px;box-shadow:var(--shade)}
.groups{margin-top:1.5rem;display:grid;gap:1rem}
details summary{padding:.7rem 1rem;cursor:pointer;font-weight:600}
summary span{font-weight:400;color:var(--soft)}
table{border-collapse:collapse;width:100%;font-size:.87rem}
td{padding:.3rem 1rem;border-top:1px solid var(--line);vertical-align:top;overflow-wrap:anywhere;white-space:pre-wrap}
td:first-child{color:var(--soft);width:38%}
)";

constexpr std::array SafetyWords = {"Safe", "Moderate", "Restricted"};
constexpr std::array ContentWords = {"Photo", "Screenshot", "Other"};
constexpr std::array SearchWords = {"In public searches", "Hidden from searches"};

template <std::size_t Count>
const char *Word(const std::array<const char *, Count> &words, int number)
{
    return number >= 1 && number <= static_cast<int>(Count) ? words[static_cast<std::size_t>(number - 1)] : "?";
}

const char *Audience(const PhotoRecord &photo)
{
    return photo.isPublic                     ? "Anyone"
           : photo.isFriend && photo.isFamily ? "Friends and family"
           : photo.isFriend                   ? "Friends"
           : photo.isFamily                   ? "Family"
                                              : "Only the owner";
}

std::string TimeText(std::int64_t unixSeconds)
{
    return fmt::format("{:%Y-%m-%d %H:%M}", fmt::localtime(static_cast<std::time_t>(unixSeconds)));
}

std::string TagsHtml(const PhotoRecord &photo)
{
    std::string html;
    for (const auto &tag : SplitTags(photo.tags))
    {
        html += "<li>" + EscapeMarkup(tag) + "</li>";
    }
    return html.empty() ? html : "<ul class=\"tags\" aria-label=\"Tags\">" + html + "</ul>";
}

std::string DescriptionHtml(const PhotoRecord &photo)
{
    return photo.description.empty() ? "" : "<p dir=\"auto\">" + EscapeMarkup(photo.description) + "</p>";
}

std::string GroupNames(const PhotoFacts &facts)
{
    std::string names;
    for (const auto &group : facts.groups)
    {
        names += (names.empty() ? "" : " · ") + group.name;
    }
    return names;
}

std::string CardHtml(const PhotoRecord &photo, const std::string &groupNames)
{
    return fmt::format("<article class=\"card\"><a class=\"picture\" href=\"/photo/{0}\">{1}</a>"
                       "<div class=\"text\"><h2 dir=\"auto\"><a href=\"/photo/{0}\">{2}</a></h2>{3}{4}"
                       "<div class=\"facts\"><b>{5}</b><span>{6}</span><span>{7}</span><span>{8}</span>"
                       "<span>{9}</span><span>{10}</span>{11}</div></div></article>\n",
                       photo.id, PictureHtml(photo), TitleHtml(photo), DescriptionHtml(photo), TagsHtml(photo),
                       Audience(photo), Word(SafetyWords, photo.safetyLevel),
                       Word(ContentWords, photo.contentType), EscapeMarkup(photo.detectedType),
                       SizeText(photo.size), groupNames.empty() ? "no metadata in the file" : groupNames,
                       photo.run.empty() ? "" : "<span>" + EscapeMarkup(photo.run) + "</span>");
}

std::string RowHtml(const std::string &name, const std::string &value)
{
    return "<tr><td>" + EscapeMarkup(name) + "</td><td dir=\"auto\">" + EscapeMarkup(value) + "</td></tr>";
}

std::string UploadTable(const PhotoRecord &photo, const PhotoFacts &facts)
{
    const std::string rows =
        RowHtml("Who may see it", Audience(photo)) + RowHtml("Safety", Word(SafetyWords, photo.safetyLevel)) +
        RowHtml("Content", Word(ContentWords, photo.contentType)) +
        RowHtml("Search", Word(SearchWords, photo.hidden)) + RowHtml("File name", photo.fileName) +
        RowHtml("Type", photo.detectedType +
                            (photo.mimeType == photo.detectedType ? "" : " (sent as " + photo.mimeType + ")")) +
        RowHtml("Size", fmt::format("{} ({} bytes)", SizeText(photo.size), photo.size)) +
        RowHtml("Pixels", facts.width > 0 ? fmt::format("{} × {}", facts.width, facts.height) : "unknown") +
        RowHtml("SHA-256", photo.sha256) + RowHtml("Uploaded", TimeText(photo.uploaded)) +
        RowHtml("Program", photo.userAgent) + RowHtml("Photo id", std::to_string(photo.id));
    return "<table>" + rows + "</table>";
}

HttpReply Picture(const PhotoRecord &record, const std::filesystem::path &path)
{
    HttpReply reply{200, record.detectedType};
    reply.headers = {{"X-Content-Type-Options", "nosniff"},
                     {"Content-Security-Policy", "default-src 'none'"},
                     {"Cache-Control", "max-age=86400, immutable"}};
    reply.file = path;
    return reply;
}

} // namespace

std::string GalleryFrame(const std::string &title, const std::string &heading, const std::string &main,
                         const std::string &style)
{
    return PageFrame({title, Style + style,
                      heading +
                          "<p class=\"demo\">A demonstration: <b>flickr-loopback</b> shows this page, on your own "
                          "computer. Nothing here has left it.</p>",
                      main});
}

std::string SizeText(std::int64_t bytes)
{
    return bytes < 1000        ? fmt::format("{} bytes", bytes)
           : bytes < 1'000'000 ? fmt::format("{:.0f} KB", static_cast<double>(bytes) / 1e3)
                               : fmt::format("{:.1f} MB", static_cast<double>(bytes) / 1e6);
}

std::string TitleHtml(const PhotoRecord &photo)
{
    return photo.title.empty() ? "<span class=\"untitled\">untitled</span>" : EscapeMarkup(photo.title);
}

std::string PictureHtml(const PhotoRecord &photo)
{
    const std::string source = fmt::format("/photo/{}/file", photo.id);
    if (photo.detectedType == "image/tiff")
    {
        return "<span class=\"none\">TIFF: no preview</span>";
    }
    return "<img loading=\"lazy\" alt=\"" + EscapeMarkup(photo.title) + "\" src=\"" + source + "\">";
}

std::string OverviewPage(const Account &account, const std::vector<PhotoRecord> &photos, const FactsOf &facts)
{
    std::int64_t bytes = 0;
    std::string cards;
    for (const auto &photo : photos)
    {
        bytes += photo.size;
        cards += CardHtml(photo, GroupNames(facts(photo)));
    }
    const std::string heading = fmt::format("<h1>{}<i>.</i></h1><p>{} · {} account · {} {}, {}</p>"
                                            "<p><a href=\"/compare\">Compare uploads</a></p>",
                                            EscapeMarkup(account.fullName), EscapeMarkup(account.userName),
                                            account.isPro ? "Pro" : "Basic", photos.size(),
                                            photos.size() == 1 ? "photo" : "photos", SizeText(bytes));
    return GalleryFrame(account.fullName + "’s photos", heading,
                        photos.empty() ? "<div class=\"empty\"><h2>Nothing published yet</h2>"
                                         "<p>Pictures appear here as soon as they are uploaded.</p></div>"
                                       : "<div class=\"grid\">" + cards + "</div>");
}

std::string PhotoPage(const PhotoRecord &photo, const PhotoFacts &facts)
{
    std::string groups;
    for (const auto &group : facts.groups)
    {
        std::string rows;
        for (const auto &[key, value] : group.entries)
        {
            rows += RowHtml(key, value);
        }
        groups += fmt::format("<details class=\"panel\"{}><summary>{} <span>{}</span></summary>"
                              "<table>{}</table></details>",
                              group.entries.size() <= 12 ? " open" : "", group.name, group.entries.size(), rows);
    }
    if (groups.empty())
    {
        groups = "<p class=\"empty\">The file holds no metadata.</p>";
    }
    const std::string main =
        fmt::format("<div class=\"photo\"><a class=\"picture\" href=\"/photo/{0}/file\">{1}</a>"
                    "<div class=\"panel\"><div class=\"text\"><h2 dir=\"auto\">{2}</h2>{3}{4}</div>{5}</div></div>"
                    "<section class=\"groups\" aria-label=\"Metadata in the file\">{6}</section>",
                    photo.id, PictureHtml(photo), TitleHtml(photo), DescriptionHtml(photo), TagsHtml(photo),
                    UploadTable(photo, facts), groups);
    return GalleryFrame(photo.title.empty() ? "Photo " + std::to_string(photo.id) : photo.title,
                        "<h1><a href=\"/\">← All photos</a></h1>", main);
}

std::string MissingPage()
{
    return GalleryFrame("Not found", "<h1><a href=\"/\">← All photos</a></h1>",
                        "<div class=\"empty\"><h2>Nothing is here</h2></div>");
}

HttpReply Gallery::Handle(const HttpRequest &request) const
{
    constexpr std::string_view photoPrefix = "/photo/";
    constexpr std::string_view fileSuffix = "/file";
    std::string path = request.Path();
    if (request.method == "POST")
    {
        return {405, "text/plain; charset=utf-8", "These pages are only read.\n"};
    }
    const auto facts = [this](const PhotoRecord &record) { return ReadPhotoFacts(m_uploads.PathOf(record)); };
    if (path == "/")
    {
        return PageReply(200, OverviewPage(m_accounts.Get(), m_photos.All(), facts));
    }
    if (path == "/compare")
    {
        return PageReply(200, ComparisonPage(m_photos.All(), facts));
    }
    if (path.starts_with(photoPrefix))
    {
        path.erase(0, photoPrefix.size());
        const bool isFile = path.ends_with(fileSuffix);
        path.resize(path.size() - (isFile ? fileSuffix.size() : 0));
        const auto id = ParseWholeNumber(path);
        const auto record = id ? m_photos.Find(*id) : std::nullopt;
        if (record)
        {
            return isFile ? Picture(*record, m_uploads.PathOf(*record))
                          : PageReply(200, PhotoPage(*record, facts(*record)));
        }
    }
    return PageReply(404, MissingPage());
}

} // namespace loopback
