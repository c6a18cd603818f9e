#include "loopback/UploadService.h"

#include "loopback/FileKind.h"
#include "loopback/IncomingFile.h"
#include "loopback/MultipartParser.h"
#include "loopback/RandomText.h"
#include "loopback/UploadParameters.h"
#include "loopback/XmlReply.h"

#include <algorithm>
#include <ctime>
#include <memory>

namespace loopback
{

namespace
{

constexpr std::size_t FieldBytesLimit = 1024 * 1024;
constexpr char PhotoField[] = "photo";

} // namespace

// The part of the form that has arrived so far.
struct UploadService::Form
{
    FormFields fields;
    PartHeader photoHeader;
    std::unique_ptr<IncomingFile> photo;
    std::string complaint;
    bool isInPhoto = false;
    std::size_t fieldBytes = 0;

    MultipartParser::Sinks Sinks(const std::filesystem::path &folder)
    {
        return {[this, folder](const PartHeader &header) { Begin(header, folder); },
                [this](std::string_view bytes) { Add(bytes); }, [this] { isInPhoto = false; }};
    }

    void Begin(const PartHeader &header, const std::filesystem::path &folder)
    {
        isInPhoto = header.name == PhotoField;
        if (!isInPhoto)
        {
            fields.emplace_back(header.name, "");
            return;
        }
        if (photo || !header.fileName)
        {
            complaint = photo ? "two photos in one request" : "the photo part has no file name";
        }
        photoHeader = header;
        photo = std::make_unique<IncomingFile>(folder);
    }

    void Add(std::string_view bytes)
    {
        if (isInPhoto)
        {
            photo->Add(bytes);
        }
        else if ((fieldBytes += bytes.size()) > FieldBytesLimit)
        {
            complaint = "the fields are too long";
        }
        else
        {
            fields.back().second.append(bytes);
        }
    }
};

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

void UploadService::Clear()
{
    std::lock_guard lock(m_acceptance);
    const auto records = m_photos.All();
    m_photos.Clear();
    for (const auto &record : records)
    {
        std::error_code ignored;
        std::filesystem::remove(PathOf(record), ignored);
    }
}

HttpReply UploadService::Handle(HttpExchange &exchange)
{
    const HttpRequest &request = exchange.Request();
    Form form;
    const auto boundary = MultipartParser::BoundaryOf(request.Header("content-type"));
    bool arrived = false;
    if (boundary)
    {
        MultipartParser parser(*boundary, form.Sinks(m_incomingFolder));
        // Read the rest of a malformed body too: many clients read the answer only after sending all of it.
        arrived = exchange.ReadBody([&](std::string_view bytes) { return parser.Feed(bytes), true; });
        if (form.complaint.empty())
        {
            form.complaint = !parser.Error().empty() ? parser.Error()
                             : !parser.IsComplete()  ? "the form has no end"
                                                     : "";
        }
    }
    else
    {
        std::string body;
        arrived = exchange.ReadBody([&](std::string_view bytes) {
            body.append(bytes.substr(0, FieldBytesLimit - std::min(body.size(), FieldBytesLimit)));
            return true;
        });
        form.fields = ParseForm(body);
    }
    // If the connection broke, nobody will receive the answer.
    return arrived ? Judge(request, form) : HttpReply{400};
}

HttpReply UploadService::Judge(const HttpRequest &request, Form &form)
{
    if (!form.complaint.empty())
    {
        return FailReply(3, "General upload failure (" + form.complaint + ")");
    }
    const Caller caller = m_admission.Admit(request, form.fields, Permission::Write);
    if (caller.refusal)
    {
        return *caller.refusal;
    }
    if (!form.photo)
    {
        return FailReply(2, "No photo specified");
    }
    UploadParameters parameters = ReadUploadParameters(form.fields);
    if (!parameters.complaint.empty())
    {
        return FailReply(3, "General upload failure (" + parameters.complaint + ")");
    }
    if (form.photo->Size() == 0)
    {
        return FailReply(4, "Filesize was zero");
    }
    if (form.photo->Size() > m_accounts.Get().maxFileSize)
    {
        return FailReply(8, "Filesize was too large");
    }
    PhotoRecord &record = parameters.record;
    record.fileName = form.photoHeader.fileName.value_or("");
    record.mimeType = form.photoHeader.contentType;
    record.token = caller.token.token;
    record.userAgent = request.Header("user-agent");
    record.connection = static_cast<std::int64_t>(request.connection);
    record.size = form.photo->Size();
    record.sha256 = form.photo->Sha256();
    record.uploaded = std::time(nullptr);
    return Accept(std::move(record), form, parameters.isAsynchronous);
}

HttpReply UploadService::Accept(PhotoRecord record, Form &form, bool isAsynchronous)
{
    std::lock_guard lock(m_acceptance);
    const Account account = m_accounts.Get();
    record.run = account.run;
    record.ticket = isAsynchronous ? TicketPrefix + RandomDigits(14) : "";
    const HttpReply ticketReply = OkReply({{"ticketid", {}, record.ticket}});
    if (account.refuseDuplicates && m_photos.HasContent(record.sha256))
    {
        return isAsynchronous ? ticketReply : FailReply(9, "Duplicate photo/video detected");
    }
    const FileKind *kind = RecogniseFile(form.photo->FirstBytes());
    if (!kind)
    {
        // The service inspects an asynchronous upload only after it has answered.
        return isAsynchronous ? ticketReply : FailReply(5, "Filetype was not recognised");
    }
    if (!m_accounts.UseBandwidth(record.size))
    {
        return FailReply(6, "User exceeded upload limit");
    }
    record.id = m_photos.ReserveId();
    record.detectedType = kind->mimeType;
    record.storedName = std::to_string(record.id) + "." + kind->extension;
    form.photo->Keep(PathOf(record));
    HttpReply reply = isAsynchronous ? ticketReply : OkReply({{"photoid", {}, std::to_string(record.id)}});
    m_photos.Add(record);
    return reply;
}

} // namespace loopback
