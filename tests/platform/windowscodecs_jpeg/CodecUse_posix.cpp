#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "platform/windowscodecs/Codecs.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

ComPtr<IStream> StreamOf(const Octets &bytes)
{
    ComPtr<IStream> stream;
    CreateStreamOnHGlobal(nullptr, TRUE, stream.Put());
    ULONG written = 0;
    stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    return stream;
}

Octets BytesOf(IStream *stream)
{
    ULARGE_INTEGER end{};
    stream->Seek({}, STREAM_SEEK_END, &end);
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    Octets bytes(static_cast<size_t>(end.QuadPart));
    ULONG got = 0;
    stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &got);
    bytes.resize(got);
    return bytes;
}

HRESULT OpenFrame(const Octets &file, ComPtr<IWICBitmapFrameDecode> &frame)
{
    ComPtr<IWICBitmapDecoder> decoder;
    HRESULT result = CreateJpegDecoder(decoder.Put());
    if (SUCCEEDED(result))
    {
        result = decoder->Initialize(StreamOf(file).Get(), WICDecodeMetadataCacheOnDemand);
    }
    return SUCCEEDED(result) ? decoder->GetFrame(0, frame.Put()) : result;
}

namespace
{
HRESULT CopyProfile(IWICBitmapFrameDecode *source, IWICBitmapFrameEncode *target)
{
    ComPtr<IWICColorContext> context;
    HRESULT result = CreateColorContext(context.Put());
    UINT count = 0;
    IWICColorContext *contexts[1] = {context.Get()};
    if (SUCCEEDED(result))
    {
        result = source->GetColorContexts(1, contexts, &count);
    }
    return SUCCEEDED(result) ? target->SetColorContexts(count, contexts) : result;
}

HRESULT SetUpFrame(const Rewriting &rewriting, IWICBitmapFrameDecode *source, IWICBitmapFrameEncode *target)
{
    UINT width = 0;
    UINT height = 0;
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    source->GetSize(&width, &height);
    for (const HRESULT result :
         {target->Initialize(nullptr), target->SetSize(width, height),
          target->SetResolution(rewriting.Resolution, rewriting.Resolution), target->SetPixelFormat(&format),
          rewriting.CopyProfile ? CopyProfile(source, target) : S_OK})
    {
        if (FAILED(result))
        {
            return result;
        }
    }
    if (rewriting.CopyBlocks)
    {
        const auto writer = QueryFor<IWICMetadataBlockWriter>(target);
        writer->InitializeFromBlockReader(QueryFor<IWICMetadataBlockReader>(source).Get());
    }
    ComPtr<IWICMetadataQueryWriter> queries;
    const HRESULT result = target->GetMetadataQueryWriter(queries.Put());
    if (SUCCEEDED(result) && rewriting.Edit)
    {
        rewriting.Edit(queries.Get());
    }
    return result;
}
} // namespace

HRESULT Rewrite(const Octets &file, const Rewriting &rewriting, Octets &result)
{
    ComPtr<IWICBitmapFrameDecode> source;
    HRESULT code = OpenFrame(file, source);
    if (FAILED(code))
    {
        return code;
    }
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    const ComPtr<IStream> target = StreamOf({});
    CreateJpegEncoder(encoder.Put());
    encoder->Initialize(target.Get(), WICBitmapEncoderNoCache);
    encoder->CreateNewFrame(frame.Put(), nullptr);
    code = SetUpFrame(rewriting, source.Get(), frame.Get());
    if (SUCCEEDED(code))
    {
        code = frame->WriteSource(source.Get(), nullptr);
    }
    if (SUCCEEDED(code))
    {
        code = frame->Commit();
    }
    if (SUCCEEDED(code))
    {
        code = encoder->Commit();
    }
    result = BytesOf(target.Get());
    return code;
}

QueryValue::~QueryValue()
{
    PropVariantClear(&Value);
}

PROPVARIANT QueryValue::Short(USHORT value)
{
    PROPVARIANT variant{};
    variant.vt = VT_UI2;
    variant.uiVal = value;
    return variant;
}

PROPVARIANT QueryValue::Rational(ULONG numerator, ULONG denominator)
{
    PROPVARIANT variant{};
    variant.vt = VT_UI8;
    variant.uhVal.QuadPart = static_cast<ULONGLONG>(denominator) << 32 | numerator;
    return variant;
}

PROPVARIANT QueryValue::Text(const WCHAR *text)
{
    PROPVARIANT variant{};
    variant.vt = VT_LPWSTR;
    variant.pwszVal = const_cast<WCHAR *>(text);
    return variant;
}

PROPVARIANT QueryValue::Narrow(const char *text)
{
    PROPVARIANT variant{};
    variant.vt = VT_LPSTR;
    variant.pszVal = const_cast<char *>(text);
    return variant;
}

bool Holds(const Octets &file, const std::string &bytes)
{
    return std::search(file.begin(), file.end(), bytes.begin(), bytes.end(),
                       [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); }) != file.end();
}

namespace
{
// "[IFD0]          Make                            : Value"
void NoteLine(const std::string &text, TagValues &tags)
{
    const size_t end = text.find(']');
    const size_t colon = text.find(": ");
    if (text[0] != '[' || end == std::string::npos || colon == std::string::npos)
    {
        return;
    }
    const size_t name = text.find_first_not_of(' ', end + 1);
    const std::string tag = text.substr(name, text.find_first_of(" :", name) - name);
    const std::string group = text.substr(1, end - 1);
    const std::string value = text.substr(colon + 2, text.size() - colon - 3);
    if (group != "ExifTool" && group != "System")
    {
        tags.emplace(group + ":" + tag, value);
    }
    else if (tag == "Warning" || tag == "Error")
    {
        tags.emplace(tag, value);
    }
}
} // namespace

std::vector<TagValues> ReadWithExiftool(const std::vector<Octets> &files)
{
    char folder[] = "/tmp/codec-test-XXXXXX";
    std::vector<TagValues> all(files.size());
    if (mkdtemp(folder) == nullptr)
    {
        return all;
    }
    for (size_t i = 0; i < files.size(); ++i)
    {
        std::ofstream file(std::string(folder) + "/" + std::to_string(i) + ".jpg", std::ios::binary);
        file.write(reinterpret_cast<const char *>(files[i].data()), static_cast<std::streamsize>(files[i].size()));
    }
    const std::string command = std::string("exiftool -n -a -G1 -s -charset UTF8 -e ") + folder + " 2>&1";
    if (FILE *output = popen(command.c_str(), "r"))
    {
        size_t current = 0;
        char line[4096];
        while (std::fgets(line, sizeof line, output) != nullptr)
        {
            // "======== /tmp/codec-test-abcdef/12.jpg"
            const std::string text(line);
            if (text.rfind("======== ", 0) == 0)
            {
                current = std::stoul(text.substr(text.rfind('/') + 1));
            }
            NoteLine(text, all[current]);
        }
        pclose(output);
    }
    std::filesystem::remove_all(folder);
    return all;
}

TagValues ReadWithExiftool(const Octets &file)
{
    return ReadWithExiftool(std::vector<Octets>{file}).front();
}
