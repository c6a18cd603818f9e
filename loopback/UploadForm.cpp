#include "loopback/UploadForm.h"

namespace loopback
{

namespace
{

constexpr std::size_t FieldBytesLimit = 1024 * 1024;

}

UploadForm::UploadForm(const std::string &contentType, std::filesystem::path folder)
    : m_folder(std::move(folder)), m_isUrlEncoded(contentType.starts_with("application/x-www-form-urlencoded"))
{
    if (const auto boundary = MultipartParser::BoundaryOf(contentType))
    {
        m_parser.emplace(*boundary, MultipartParser::Sinks{[this](const PartHeader &header) { BeginPart(header); },
                                                           [this](std::string_view bytes) { AddToPart(bytes); },
                                                           [this] { m_isInPhoto = false; }});
    }
}

void UploadForm::Add(std::string_view bytes)
{
    // The rest of a malformed body is read too: many clients read the answer only after sending all of it.
    if (m_parser)
    {
        m_parser->Feed(bytes);
    }
    else if (m_isUrlEncoded)
    {
        m_bytes.append(bytes.substr(0, FieldBytesLimit - m_bytes.size()));
    }
}

const FormFields &UploadForm::Fields()
{
    if (m_fields.empty() && m_isUrlEncoded)
    {
        m_fields = ParseForm(m_bytes);
    }
    return m_fields;
}

std::string UploadForm::Complaint() const
{
    return !m_complaint.empty()         ? m_complaint
           : !m_parser                  ? ""
           : !m_parser->Error().empty() ? m_parser->Error()
           : !m_parser->IsComplete()    ? "the form has no end"
                                        : "";
}

void UploadForm::BeginPart(const PartHeader &header)
{
    m_isInPhoto = header.name == "photo";
    if (!m_isInPhoto)
    {
        m_fields.emplace_back(header.name, "");
        return;
    }
    if (m_photo || !header.fileName)
    {
        m_complaint = m_photo ? "two photos in one request" : "the photo part has no file name";
    }
    m_photoHeader = header;
    m_photo = std::make_unique<IncomingFile>(m_folder);
}

void UploadForm::AddToPart(std::string_view bytes)
{
    if (m_isInPhoto)
    {
        m_photo->Add(bytes);
    }
    else if ((m_fieldBytes += bytes.size()) > FieldBytesLimit)
    {
        m_complaint = "the fields are too long";
    }
    else
    {
        m_fields.back().second.append(bytes);
    }
}

} // namespace loopback
