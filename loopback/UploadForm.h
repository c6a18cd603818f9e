// The body of a request as it arrives: the fields, and the picture of an upload in a file of its own.
#pragma once

#include "loopback/FormFields.h"
#include "loopback/IncomingFile.h"
#include "loopback/MultipartParser.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace loopback
{

class UploadForm
{
public:
    // `folder` is where the picture is kept until it is accepted.
    UploadForm(const std::string &contentType, std::filesystem::path folder);
    UploadForm(const UploadForm &) = delete;
    UploadForm &operator=(const UploadForm &) = delete;

    void Add(std::string_view bytes);

    // The following are for when the whole body has arrived. What is wrong with it, or an empty text.
    std::string Complaint() const;

    const FormFields &Fields();
    // Null if there is none.
    IncomingFile *Photo() { return m_photo.get(); }
    const PartHeader &PhotoHeader() const { return m_photoHeader; }

private:
    void BeginPart(const PartHeader &header);
    void AddToPart(std::string_view bytes);

    std::filesystem::path m_folder;
    // Absent for a body that isn't multipart: its bytes.
    std::optional<MultipartParser> m_parser;
    bool m_isUrlEncoded;
    std::string m_bytes;
    FormFields m_fields;
    PartHeader m_photoHeader;
    std::unique_ptr<IncomingFile> m_photo;
    std::string m_complaint;
    bool m_isInPhoto = false;
    std::size_t m_fieldBytes = 0;
};

} // namespace loopback
