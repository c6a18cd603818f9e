#include "loopback/Gallery.h"

#include "loopback/FormFields.h"
#include "loopback/GalleryPage.h"
#include "loopback/PageFrame.h"

namespace loopback
{

namespace
{

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
