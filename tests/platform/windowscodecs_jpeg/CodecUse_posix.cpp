#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include "platform/windowscodecs/Codecs.h"
#include "tests/host/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>

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

bool Holds(const Octets &file, const std::string &bytes)
{
    return std::search(file.begin(), file.end(), bytes.begin(), bytes.end(),
                       [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); }) != file.end();
}

std::vector<TagValues> ReadWithExiftool(const std::vector<Octets> &files)
{
    const TemporaryFolder folder;
    for (size_t i = 0; i < files.size(); ++i)
    {
        folder.Write(std::to_string(i) + ".jpg", std::string(files[i].begin(), files[i].end()));
    }
    const std::string command = "exiftool -n -a -G1 -j -charset UTF8 -e -ext jpg " + folder.Path().string() +
                                " 2>/dev/null >" + (folder.Path() / "tags.json").string();
    std::vector<TagValues> all(files.size());
    if (std::system(command.c_str()) != 0)
    {
        ADD_FAILURE() << command;
        return all;
    }
    for (const auto &file : nlohmann::json::parse(folder.Read("tags.json")))
    {
        TagValues &tags = all[std::stoul(std::filesystem::path(file.at("SourceFile").get<std::string>()).stem())];
        for (const auto &[name, value] : file.items())
        {
            const std::string group = name.substr(0, name.find(':'));
            const std::string tag = name.substr(name.find(':') + 1);
            const bool isOwn = group == "ExifTool" || group == "System" || group == "SourceFile";
            if (!isOwn || tag == "Warning" || tag == "Error")
            {
                tags.emplace(isOwn ? tag : name, value.is_string() ? value.get<std::string>() : value.dump());
            }
        }
    }
    return all;
}

TagValues ReadWithExiftool(const Octets &file)
{
    return ReadWithExiftool(std::vector<Octets>{file}).front();
}
