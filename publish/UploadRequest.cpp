#include "publish/UploadRequest.h"

#include "account/AccountRecord.h"
#include "account/ServiceHosts.h"
#include "account/WebClientFactory.h"
#include "com/BstrOwner.h"
#include "com/Hresult.h"
#include "publish/FormFields.h"
#include "publish/ImagePreparation.h"
#include "publish/ItemRecord.h"

#include <windows.h>
#include <objidl.h>
#include <shlwapi.h>
#include <wincodec.h>

#include <algorithm>
#include <iterator>

namespace
{
// The containers that are uploaded without conversion.
const GUID *const AcceptedFormats[] = {&GUID_ContainerFormatJpeg, &GUID_ContainerFormatGif,
                                       &GUID_ContainerFormatPng};

void VerifyContainer(IStream *stream)
{
    ComPtr<IWICImagingFactory> factory;
    ThrowIfFailed(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_ALL, __uuidof(IWICImagingFactory),
                                   factory.PutVoid()));
    ComPtr<IWICBitmapDecoder> decoder;
    ThrowIfFailed(
        factory->CreateDecoderFromStream(stream, nullptr, WICDecodeMetadataCacheOnDemand, decoder.Put()));
    GUID format{};
    ThrowIfFailed(decoder->GetContainerFormat(&format));
    if (std::none_of(std::begin(AcceptedFormats), std::end(AcceptedFormats),
                     [&](const GUID *accepted) { return *accepted == format; }))
    {
        ThrowHresult(WINCODEC_ERR_BADHEADER);
    }
}

// A picture whose bytes are uploaded as they are. A stream at the file's start; the file is shared with readers but
// not with writers. With verifyContainer the file must really be JPEG, GIF or PNG: an image of another kind is thrown
// as WINCODEC_ERR_BADHEADER, other failures with the code of the call that failed.
ComPtr<IStream> OpenPictureFile(const WCHAR *path, bool verifyContainer)
{
    ComPtr<IStream> stream;
    ThrowIfFailed(SHCreateStreamOnFileW(path, STGM_READ | STGM_SHARE_DENY_WRITE, stream.Put()));
    if (verifyContainer)
    {
        VerifyContainer(stream.Get());
        ThrowIfFailed(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
    }
    return stream;
}

struct Picture
{
    ComPtr<IStream> Stream;
    ItemTexts Texts;
};

// A picture whose metadata can't be read is uploaded without any text, not even the file's name.
ItemTexts ReadTexts(IHalvoraImageMetadata *metadata, const WCHAR *sourcePath, const WCHAR *uploadName)
{
    ItemRecordOwner record;
    if (FAILED(metadata->ReadImageMetadata(sourcePath, 0, 0, nullptr, READ_METADATA_ONLY, record.Get())))
    {
        return ItemTexts();
    }
    return ChooseItemTexts(*record, uploadName);
}

Picture ObtainPicture(IHalvoraImageMetadata *metadata, const WCHAR *sourcePath, const WCHAR *uploadName,
                      const UploadOptions &options, const Pause &wait)
{
    Picture picture;
    if (options.Mode == SendAsIs)
    {
        picture.Texts = ReadTexts(metadata, sourcePath, uploadName);
        picture.Stream = OpenPictureFile(sourcePath, options.VerifyContainer);
    }
    else
    {
        picture.Stream = PrepareJpeg(metadata, sourcePath, uploadName, options, wait, picture.Texts);
    }
    return picture;
}

template <class T>
ComPtr<T> CreateComponent(REFCLSID clsid, HRESULT &result)
{
    ComPtr<T> component;
    result = CoCreateInstance(clsid, nullptr, CLSCTX_ALL, __uuidof(T), component.PutVoid());
    return component;
}

ComPtr<IRequestParameters> CreateParameters()
{
    HRESULT result = S_OK;
    auto parameters = CreateComponent<IRequestParameters>(CLSID_RequestParameters, result);
    ThrowIfFailed(result);
    return parameters;
}

void RequireContent(IStream *stream)
{
    STATSTG status{};
    ThrowIfFailed(stream->Stat(&status, STATFLAG_NONAME));
    if (status.cbSize.LowPart == 0)
    {
        ThrowHresult(E_UNEXPECTED);
    }
}

UINT32 BodyLength(IMultipartFormData *form)
{
    UINT32 length = 0;
    const HRESULT result = form->GetBodyLength(&length);
    if (length == 0)
    {
        ThrowIfFailed(result);
    }
    return length;
}

ComPtr<IRequestParameters> RequestHeaders(const BstrOwner &contentType, UINT32 contentLength)
{
    auto headers = CreateParameters();
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = contentType.Get();
    ThrowIfFailed(headers->Add(TEXT("Content-Type"), value));
    V_VT(&value) = VT_I4;
    V_I4(&value) = static_cast<INT32>(contentLength);
    ThrowIfFailed(headers->Add(TEXT("Content-Length"), value));
    return headers;
}

HRESULT SendPicture(const RunContext &run, const Picture &picture, const WCHAR *uploadName,
                    ComPtr<IUnknown> &reply)
{
    const ComPtr<IOAuthWebClient> client = CreateWebClient(run.Account, run.Version);
    if (!client)
    {
        ThrowHresult(E_UNEXPECTED);
    }
    RequireContent(picture.Stream.Get());

    HRESULT created = S_OK;
    const auto form = CreateComponent<IMultipartFormData>(CLSID_MultipartFormData, created);
    if (!form)
    {
        ThrowHresult(E_UNEXPECTED);
    }
    BstrOwner mimeType;
    client->GetMimeTypeForFile(uploadName, mimeType.Put());
    const auto parameters = CreateParameters();
    AddFormFields(picture.Texts, parameters.Get(), form.Get());
    ThrowIfFailed(form->AddFilePart(TEXT("photo"), picture.Stream.Get(), mimeType.Text(), uploadName, 0, 0));

    ComPtr<IStream> body;
    ThrowIfFailed(form->QueryInterface(__uuidof(IStream), body.PutVoid()));
    const UINT32 length = BodyLength(form.Get());
    BstrOwner contentType;
    ThrowIfFailed(form->GetContentType(contentType.Put()));
    const auto headers = RequestHeaders(contentType, length);
    return client->UploadRequest(ServiceHosts::UploadUrl, nullptr, TEXT("POST"), headers.Get(), nullptr,
                                 parameters.Get(), body.Get(), length, run.Progress, 0, reply.Put());
}
} // namespace

HRESULT UploadOneFile(const RunContext &run, const WCHAR *sourcePath, const WCHAR *uploadName,
                      ComPtr<IUnknown> &reply, const UploadOptions &options) noexcept
{
    return AtBoundary([&] {
        reply.Reset();
        ComPtr<IHalvoraImageMetadata> metadata;
        ThrowIfFailed(run.Host->QueryInterface(__uuidof(IHalvoraImageMetadata), metadata.PutVoid()));
        const Picture picture = ObtainPicture(metadata.Get(), sourcePath, uploadName, options, run.Wait);
        return SendPicture(run, picture, uploadName, reply);
    });
}
