#include "host/PictureDecoding.h"

#include "com/ErrnoCodes_posix.h"
#include "com/WholeFile.h"
#include "host/FileNames.h"
#include "host/JpegFile.h"
#include "host/PixelDecoding_posix.h"

#include <wincodec.h>

#include <fstream>
#include <future>
#include <string_view>

using namespace std::string_view_literals;

namespace
{
std::string FirstBytes(const std::filesystem::path &file)
{
    if (const std::error_code fault = TryToRead(file))
    {
        throw DecodingError(HRESULT_FROM_WIN32(Win32FromErrno(fault.value())),
                            "can't be read: " + FileErrorWords(fault));
    }
    char bytes[12];
    std::ifstream content(file, std::ios::binary);
    content.read(bytes, sizeof(bytes));
    return std::string(bytes, static_cast<size_t>(content.gcount()));
}

// Kinds that no camera raw file begins with. Many raw files are TIFF outside, and a reader of TIFF finds
// their thumbnails only, so the extension decides there.
bool IsPlainKind(std::string_view start)
{
    return start.starts_with("\xFF\xD8"sv) || start.starts_with("\x89PNG"sv) || start.starts_with("GIF8"sv) ||
           start.starts_with("RIFF"sv);
}

[[noreturn]] void ThrowDamaged(const PictureSurvey &survey)
{
    throw DecodingError(WINCODEC_ERR_BADIMAGE, "is damaged or was cut short: " + survey.damage);
}

// The decoder has read all scans before it gives the first row, and warns of what is wrong. It also warns of what is
// odd and does no harm, so the check says whether it is damage.
DecodedPicture DecodeScans(const std::filesystem::path &file, UINT longEdge, const PictureHeader &header,
                           const std::atomic<bool> *stop)
{
    try
    {
        return DecodePixels(file, longEdge, header, Refusal::AnyWarning, stop);
    }
    catch (const DecodingError &error)
    {
        const PictureSurvey survey = SurveyFile(file, stop);
        if (survey.state == PictureState::Damaged)
        {
            ThrowDamaged(survey);
        }
        if (error.Code() != WINCODEC_ERR_BADIMAGE || survey.state != PictureState::Whole)
        {
            throw;
        }
    }
    return DecodePixels(file, longEdge, header, Refusal::None, stop);
}

// The decoder doesn't look at what is behind the last row, where damage before it shows. The check costs a fraction of
// the decoding, and runs beside it.
DecodedPicture DecodeOneScan(const std::filesystem::path &file, UINT longEdge, const PictureHeader &header,
                             const std::atomic<bool> *stop)
{
    auto check = std::async(std::launch::async, SurveyFile, file, stop);
    DecodedPicture picture = DecodePixels(file, longEdge, header, Refusal::None, stop);
    const PictureSurvey survey = check.get();
    switch (survey.state)
    {
    case PictureState::Whole:
        break;
    case PictureState::Damaged:
        ThrowDamaged(survey);
    case PictureState::Unknown:
        return DecodePixels(file, longEdge, header, Refusal::AnyWarning, stop);
    }
    return picture;
}

DecodedPicture DecodeFile(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop)
{
    const PictureHeader header = ReadPictureHeader(file);
    if (!header.isJpeg)
    {
        return DecodePixels(file, longEdge, header, Refusal::Truncation, stop);
    }
    return header.isInScans ? DecodeScans(file, longEdge, header, stop)
                            : DecodeOneScan(file, longEdge, header, stop);
}

} // namespace

DecodedPicture DecodePicture(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop)
{
    const ImagingThread thread;
    if (!IsPlainKind(FirstBytes(file)) && IsRawExtension(ExtensionOf(file)))
    {
        return ScalePixels(DevelopRaw(file, longEdge, stop), longEdge, stop);
    }
    return DecodeFile(file, longEdge, stop);
}
