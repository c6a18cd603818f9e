#include "host/ImagingTrial.h"

#include "host/ImageMetadata.h"
#include "host/MetadataWriting.h"
#include "host/PictureSource.h"
#include "host/TextEncodings.h"

#include "com/Hresult.h"

#include <objbase.h>
#include <wincodec.h>
#include <wincodecsdk.h>

#include <functional>
#include <string>
#include <string_view>

using namespace std::string_literals;

namespace
{
// The text that is searched for in the copy; each kind of metadata block of the trial's file holds it.
constexpr std::string_view Mark = "HALVORA-TRIAL-OF-COPIES";

std::string Segment(char marker, const std::string &content)
{
    const size_t size = content.size() + 2;
    return "\xFF"s + marker + static_cast<char>(size >> 8) + static_cast<char>(size) + content;
}

std::string Segments()
{
    const std::string mark(Mark);
    const auto length = static_cast<char>(mark.size());
    // One directory with one field, the description, whose text lies behind it.
    const std::string exif =
        "Exif\0\0II*\0\x08\0\0\0\x01\0\x0E\x01\x02\0"s + length + "\0\0\0\x1A\0\0\0\0\0\0\0"s + mark;
    const std::string xmp =
        "http://ns.adobe.com/xap/1.0/\0"s +
        "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/"
        "22-rdf-syntax-ns#'><rdf:Description rdf:about='' xmlns:photoshop='http://ns.adobe.com/"
        "photoshop/1.0/' photoshop:City='" +
        mark + "'/></rdf:RDF></x:xmpmeta>";
    const std::string dataset = "\x1C\x02\x5A\0"s + length + mark;
    const std::string block = "Photoshop 3.0\0"
                              "8BIM\x04\x04\0\0\0\0\0"s +
                              static_cast<char>(dataset.size()) + dataset + std::string(dataset.size() % 2, '\0');
    std::string segments =
        Segment('\xE1', exif) + Segment('\xE1', xmp) + Segment('\xED', block) + Segment('\xFE', mark);
    // Of kinds that no component knows: with every application number but JFIF's, and that of EXIF again.
    for (int marker = 0xE1; marker <= 0xEF; ++marker)
    {
        segments += Segment(static_cast<char>(marker), "Trial\0"s + mark);
    }
    return segments;
}

// What is done to the metadata of a new picture before its pixels are written.
using Editing = std::function<void(IWICBitmapFrameEncode &frame)>;

void CopyBlocks(IWICBitmapFrameDecode &source, IWICBitmapFrameEncode &frame)
{
    const auto blocks = QueryFor<IWICMetadataBlockReader>(&source);
    const auto writer = QueryFor<IWICMetadataBlockWriter>(&frame);
    if (blocks && writer)
    {
        writer->InitializeFromBlockReader(blocks.Get());
    }
}

ComPtr<IWICMetadataQueryWriter> QueryWriterOf(IWICBitmapFrameEncode &frame)
{
    ComPtr<IWICMetadataQueryWriter> writer;
    ThrowIfFailed(frame.GetMetadataQueryWriter(writer.Put()));
    return writer;
}

class Trial
{
public:
    Trial()
    {
        ThrowIfFailed(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_ALL, __uuidof(IWICImagingFactory),
                                       m_factory.PutVoid()));
    }

    CopiedMetadata Copies()
    {
        const ComPtr<IWICBitmapFrameDecode> source = MarkedFrame();
        const auto copy = [&](IWICBitmapFrameEncode &frame) { CopyBlocks(*source.Get(), frame); };
        const auto copyAndRemove = [&](IWICBitmapFrameEncode &frame) {
            copy(frame);
            AtBoundary([&] {
                WriteRecordMetadata(*QueryWriterOf(frame).Get(), ItemRecord(), MetadataSnapshots(),
                                    GroupSwitches(), NewFrame::Copied, [](const std::string &) {});
                return S_OK;
            });
        };
        if (!HoldsMark(Encode(source.Get(), copy)))
        {
            return CopiedMetadata::None;
        }
        return HoldsMark(Encode(source.Get(), copyAndRemove)) ? CopiedMetadata::Lasting
                                                              : CopiedMetadata::Removable;
    }

    bool Writes()
    {
        const auto describe = [](IWICBitmapFrameEncode &frame) {
            std::string mark(Mark);
            PROPVARIANT text = {};
            text.vt = VT_LPSTR;
            text.pszVal = mark.data();
            QueryWriterOf(frame)->SetMetadataByName(TEXT("/app1/ifd/{ushort=270}"), &text);
        };
        return HoldsMark(Encode(GreyPicture().Get(), describe));
    }

    bool Reads()
    {
        ComPtr<IWICMetadataQueryReader> reader;
        ImageTexts texts;
        ThrowIfFailed(MarkedFrame()->GetMetadataQueryReader(reader.Put()));
        ReadFrameMetadata(*reader.Get(), texts, nullptr);
        return Utf8FromText(texts.description) == Mark;
    }

private:
    static bool HoldsMark(const std::string &file) { return file.find(Mark) != std::string::npos; }

    static ComPtr<IStream> NewStream()
    {
        ComPtr<IStream> stream;
        ThrowIfFailed(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()));
        return stream;
    }

    static ComPtr<IWICBitmapSource> GreyPicture()
    {
        return MakePictureSource(std::make_shared<const DecodedPicture>(
            DecodedPicture{16, 16, 96, 96, std::vector<BYTE>(size_t{16} * 16 * 3, 0x80)}));
    }

    ComPtr<IWICBitmapFrameDecode> MarkedFrame()
    {
        std::string marked = Encode(GreyPicture().Get(), [](IWICBitmapFrameEncode &) {});
        marked.insert(2, Segments());

        ComPtr<IStream> file = NewStream();
        ThrowIfFailed(file->Write(marked.data(), static_cast<ULONG>(marked.size()), nullptr));
        ThrowIfFailed(file->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
        ComPtr<IWICBitmapDecoder> decoder;
        ThrowIfFailed(m_factory->CreateDecoder(GUID_ContainerFormatJpeg, &GUID_VendorMicrosoft, decoder.Put()));
        ThrowIfFailed(decoder->Initialize(file.Get(), WICDecodeMetadataCacheOnDemand));
        ComPtr<IWICBitmapFrameDecode> frame;
        ThrowIfFailed(decoder->GetFrame(0, frame.Put()));
        return frame;
    }

    static std::string BytesOf(IStream *stream)
    {
        ThrowIfFailed(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
        std::string bytes(size_t{1} << 16, '\0');
        ULONG count = 0;
        ThrowIfFailed(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &count));
        bytes.resize(count);
        return bytes;
    }

    std::string Encode(IWICBitmapSource *source, const Editing &edit)
    {
        const ComPtr<IStream> file = NewStream();
        ComPtr<IWICBitmapEncoder> encoder;
        ThrowIfFailed(m_factory->CreateEncoder(GUID_ContainerFormatJpeg, &GUID_VendorMicrosoft, encoder.Put()));
        ThrowIfFailed(encoder->Initialize(file.Get(), WICBitmapEncoderNoCache));
        ComPtr<IWICBitmapFrameEncode> frame;
        ThrowIfFailed(encoder->CreateNewFrame(frame.Put(), nullptr));
        ThrowIfFailed(frame->Initialize(nullptr));
        UINT width = 0;
        UINT height = 0;
        ThrowIfFailed(source->GetSize(&width, &height));
        ThrowIfFailed(frame->SetSize(width, height));
        WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
        ThrowIfFailed(frame->SetPixelFormat(&format));
        edit(*frame.Get());
        ThrowIfFailed(frame->WriteSource(source, nullptr));
        ThrowIfFailed(frame->Commit());
        ThrowIfFailed(encoder->Commit());
        return BytesOf(file.Get());
    }

    ComPtr<IWICImagingFactory> m_factory;
};

// What the trial finds out, or the value for one that fails.
template <class Value>
Value Tried(Value (Trial::*trial)(), Value failed) noexcept
{
    AtBoundary([&] {
        failed = (Trial().*trial)();
        return S_OK;
    });
    return failed;
}
} // namespace

MetadataSupport TryWritingMetadata() noexcept
{
    static const MetadataSupport Found = {Tried(&Trial::Copies, CopiedMetadata::Unknown),
                                          Tried(&Trial::Writes, false)};
    return Found;
}

bool TryReadingMetadata() noexcept
{
    static const bool Found = Tried(&Trial::Reads, false);
    return Found;
}
