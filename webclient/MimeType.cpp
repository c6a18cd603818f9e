#include "webclient/MimeType.h"

#include "com/AsciiText.h"

namespace
{
struct MediaType
{
    const WCHAR *extension;
    const WCHAR *mimeType;
};

constexpr MediaType MediaTypes[] = {
    {TEXT("jpg"), TEXT("image/jpeg")},  {TEXT("jpeg"), TEXT("image/jpeg")}, {TEXT("jpe"), TEXT("image/jpeg")},
    {TEXT("jfif"), TEXT("image/jpeg")}, {TEXT("exif"), TEXT("image/jpeg")}, {TEXT("png"), TEXT("image/png")},
    {TEXT("gif"), TEXT("image/gif")},   {TEXT("tif"), TEXT("image/tiff")},  {TEXT("tiff"), TEXT("image/tiff")},
    {TEXT("webp"), TEXT("image/webp")}, {TEXT("bmp"), TEXT("image/bmp")},   {TEXT("heic"), TEXT("image/heic")},
    {TEXT("heif"), TEXT("image/heif")}, {TEXT("avif"), TEXT("image/avif")}, {TEXT("mov"), TEXT("video/quicktime")},
    {TEXT("mp4"), TEXT("video/mp4")},   {TEXT("m4v"), TEXT("video/mp4")},   {TEXT("avi"), TEXT("video/x-msvideo")},
};
} // namespace

const WCHAR *MimeTypeOfFile(WideView fileName) noexcept
{
    const size_t dot = fileName.find_last_of(TEXT("./\\"));
    if (dot != WideView::npos && fileName[dot] == '.')
    {
        const WideView extension = fileName.substr(dot + 1);
        for (const MediaType &type : MediaTypes)
        {
            if (EqualsIgnoringCase(extension, type.extension))
            {
                return type.mimeType;
            }
        }
    }
    return TEXT("application/octet-stream");
}
