#include "fuzz/FuzzTarget.h"

#include "com/Hresult.h"
#include "platform/windowscodecs/jpeg/QueryPath.h"
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"
#include "tests/privacy/MarkedPicture.h"

namespace
{
std::vector<std::string> JpegSamples()
{
    std::vector<std::string> samples{MakeMarkedPicture(Contents::JpegWithEverything),
                                     MakeMarkedPicture(Contents::JpegWithExifAlone)};
    for (const SampleOptions &options :
         {SampleOptions{.Width = 24, .Height = 16, .Progressive = true, .RestartInterval = 3},
          SampleOptions{.Width = 24, .Height = 16, .Components = 4, .StoredAsYcck = true},
          SampleOptions{.Width = 24, .Height = 16, .Components = 1, .Arithmetic = true, .RestartInterval = 1}})
    {
        const Octets file = MakeJpeg(options);
        samples.emplace_back(file.begin(), file.end());
    }
    return samples;
}

// Queries fields of every directory, and what is never there.
void AskForMetadata(IWICBitmapFrameDecode *frame)
{
    ComPtr<IWICMetadataQueryReader> reader;
    if (FAILED(frame->GetMetadataQueryReader(reader.Put())))
    {
        return;
    }
    for (const WCHAR *path :
         {TEXT("/app1/ifd/{ushort=271}"), TEXT("/app1/ifd/exif/{ushort=36867}"), TEXT("/app1/ifd/gps/{ushort=2}"),
          TEXT("/app1/thumb/{ushort=315}"), TEXT("/xmp/dc:title")})
    {
        PROPVARIANT value{};
        reader->GetMetadataByName(path, &value);
        PropVariantClear(&value);
    }
}

void ReadJpeg(std::string_view bytes)
{
    const Octets file(bytes.begin(), bytes.end());
    ComPtr<IWICBitmapFrameDecode> frame;
    if (FAILED(OpenFrame(file, frame)))
    {
        return;
    }
    AskForMetadata(frame.Get());
    UINT width = 0;
    UINT height = 0;
    frame->GetSize(&width, &height);
    Octets rewritten;
    Rewriting rewriting;
    rewriting.Edit = [](IWICMetadataQueryWriter *writer) {
        for (const WCHAR *path : {TEXT("/app1/ifd/gps/{ushort=2}"), TEXT("/xmp"), TEXT("/app13")})
        {
            writer->RemoveMetadataByName(path);
        }
        char words[] = "somebody";
        PROPVARIANT name{};
        name.vt = VT_LPSTR;
        name.pszVal = words;
        writer->SetMetadataByName(TEXT("/app1/ifd/{ushort=315}"), &name);
    };
    if (SUCCEEDED(Rewrite(file, rewriting, rewritten)))
    {
        ComPtr<IWICBitmapFrameDecode> again;
        if (FAILED(OpenFrame(rewritten, again)))
        {
            Broken("what the encoder writes the decoder reads");
        }
        UINT newWidth = 0;
        UINT newHeight = 0;
        again->GetSize(&newWidth, &newHeight);
        if (newWidth != width || newHeight != height)
        {
            Broken("a picture written anew keeps its size");
        }
    }
}

std::vector<std::string> PathSamples()
{
    return {"/app1/ifd/{ushort=271}",
            "/app1/ifd/exif/{ushort=36867}",
            "/[1]app13/irb/8bimiptc/iptc/{str=Caption}",
            "/xmp/<xmpbag>dc:subject",
            "/[1]app1",
            "/app13/irb/8bimiptc/iptc/{str=Country\\/Primary Location Name}"};
}

void ReadPath(std::string_view bytes)
{
    const WideText text(bytes.begin(), bytes.end());
    try
    {
        ParseQueryPath(text);
    }
    catch (const HresultError &)
    {
    }
}
} // namespace

const FuzzTarget JpegFiles{"jpeg", JpegSamples, ReadJpeg};
const FuzzTarget MetadataPaths{"metadata-path", PathSamples, ReadPath};
