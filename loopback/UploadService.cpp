#include "loopback/UploadService.h"

#include "loopback/PhotoIndex.h"
#include "loopback/RestService.h"
#include "loopback/Secrets.h"
#include "loopback/XmlReply.h"

#include <algorithm>
#include <array>
#include <ctime>

namespace loopback
{

namespace
{

using namespace std::string_view_literals;

// A format that the service accepts, by the first bytes of the file.
struct FileKind
{
    std::string_view bytes;
    const char *mimeType;
    const char *extension;
};

constexpr std::array FileKinds = {
    FileKind{"\xFF\xD8\xFF"sv, "image/jpeg", "jpg"}, FileKind{"\x89PNG\r\n\x1A\n"sv, "image/png", "png"},
    FileKind{"GIF87a"sv, "image/gif", "gif"},        FileKind{"GIF89a"sv, "image/gif", "gif"},
    FileKind{"II*\0"sv, "image/tiff", "tif"},        FileKind{"MM\0*"sv, "image/tiff", "tif"},
};

const FileKind *RecogniseFile(std::string_view firstBytes)
{
    const auto found =
        std::ranges::find_if(FileKinds, [&](const FileKind &kind) { return firstBytes.starts_with(kind.bytes); });
    return found == FileKinds.end() ? nullptr : &*found;
}

} // namespace

UploadService::UploadService(std::filesystem::path store, AccountBook &accounts, PhotoIndex &photos,
                             Admission &admission)
    : m_photosFolder(store / "photos"),
      m_incomingFolder(store / "incoming"),
      m_accounts(accounts),
      m_photos(photos),
      m_admission(admission)
{
    // Remove the incomplete uploads of an interrupted run.
    std::filesystem::remove_all(m_incomingFolder);
    std::filesystem::create_directories(m_photosFolder);
    std::filesystem::create_directories(m_incomingFolder);
}

std::filesystem::path UploadService::PathOf(const PhotoRecord &record) const
{
    return m_photosFolder / record.storedName;
}

HttpReply UploadService::Handle(const HttpRequest &request, UploadForm &form)
{
    if (const auto complaint = form.Complaint(); !complaint.empty())
    {
        return FailReply(3, "General upload failure (" + complaint + ")");
    }
    const Caller caller = m_admission.Admit(request, form.Fields(), Permission::Write);
    if (caller.refusal)
    {
        return *caller.refusal;
    }
    IncomingFile *photo = form.Photo();
    if (!photo)
    {
        return FailReply(2, "No photo specified");
    }
    PhotoRecord record;
    if (const auto complaint = ReadUploadParameters(form.Fields(), record); !complaint.empty())
    {
        return FailReply(3, "General upload failure (" + complaint + ")");
    }
    if (photo->Size() == 0)
    {
        return FailReply(4, "Filesize was zero");
    }
    if (photo->Size() > m_accounts.Get().maxFileSize)
    {
        return FailReply(8, "Filesize was too large");
    }
    record.fileName = form.PhotoHeader().fileName.value_or("");
    record.mimeType = form.PhotoHeader().contentType;
    record.token = caller.token.token;
    record.userAgent = request.Header("user-agent");
    record.size = photo->Size();
    record.sha256 = photo->Sha256();
    record.uploaded = std::time(nullptr);
    return Accept(std::move(record), *photo);
}

// The service publishes the picture, or refuses it, after it has answered.
static HttpReply TicketReply(const std::string &ticket)
{
    return OkReply(Element("ticketid", {}, ticket));
}

HttpReply UploadService::Accept(PhotoRecord record, IncomingFile &photo)
{
    record.run = m_accounts.Get().run;
    const FileKind *kind = RecogniseFile(photo.FirstBytes());
    if (!kind)
    {
        // The service inspects an asynchronous upload only after it has answered.
        return record.isAsynchronous ? TicketReply(RefusedTicket + RandomDigits(13))
                                     : FailReply(5, "Filetype was not recognised");
    }
    if (!m_accounts.UseBandwidth(record.size))
    {
        return FailReply(6, "User exceeded upload limit");
    }
    record.id = m_photos.ReserveId();
    record.detectedType = kind->mimeType;
    record.storedName = std::to_string(record.id) + "." + kind->extension;
    photo.Keep(PathOf(record));
    m_photos.Add(record);
    return record.isAsynchronous ? TicketReply(Ticket + std::to_string(record.id))
                                 : OkReply(Element("photoid", {}, std::to_string(record.id)));
}

} // namespace loopback
