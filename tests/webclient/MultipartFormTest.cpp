#include "com/BstrOwner.h"
#include "com/TextConversion.h"
#include "tests/platform/KnownGaps.h"
#include "tests/webclient/ScriptedStream.h"
#include "webclient/MultipartForm.h"
#include "webclient/RequestBodies.h"
#include "webclient/RequestParameters.h"

#include <gmock/gmock.h>

namespace
{
using testing::HasSubstr;

std::string ReadAll(IStream *stream, ULONG chunk, HRESULT *result = nullptr)
{
    std::string all;
    std::string buffer(chunk, 0);
    for (;;)
    {
        ULONG read = 0;
        const HRESULT code = stream->Read(buffer.data(), chunk, &read);
        all.append(buffer, 0, read);
        if (FAILED(code) || read == 0)
        {
            if (result != nullptr)
            {
                *result = code;
            }
            return all;
        }
    }
}

std::string BoundaryOf(IMultipartFormData *form)
{
    BstrOwner type;
    EXPECT_EQ(form->GetContentType(type.Put()), S_OK);
    const std::string text = ToUtf8(type.View());
    EXPECT_TRUE(text.starts_with("multipart/form-data; boundary=")) << text;
    return text.substr(text.find('=') + 1);
}

UINT32 LengthOf(IMultipartFormData *form)
{
    UINT32 length = 0;
    EXPECT_EQ(form->GetBodyLength(&length), S_OK);
    return length;
}

// A form with the picture in it, if there is one, and the form's bytes as a stream.
struct Form
{
    explicit Form(IStream *picture = nullptr, const WCHAR *name = TEXT("a.jpg"))
    {
        EXPECT_TRUE(picture == nullptr ||
                    form->AddFilePart(TEXT("photo"), picture, TEXT("image/jpeg"), name, 0, 0) == S_OK);
    }

    ComPtr<CMultipartFormData> form = CMultipartFormData::Make();
    ComPtr<IStream> body = QueryFor<IStream>(static_cast<IMultipartFormData *>(form.Get()));
};

class MultipartFormTest : public testing::Test, protected Form
{
};

TEST_F(MultipartFormTest, BodyIsByteForByteWhatTheFormHolds)
{
    const auto picture = ScriptedStream::Make("\xFF\xD8 bytes \r\n--x\0 of it", 4);
    ASSERT_EQ(form->AddTextField(TEXT("title"), TEXT("Gr\u00FC\u00DFe \U0001F600\x01\r\n\ttab")), S_OK);
    ASSERT_EQ(form->AddNumberField(TEXT("is_public"), 4000000000u), S_OK);
    ASSERT_EQ(form->AddFilePart(TEXT("photo"), picture.Get(), TEXT("image/jpeg"), TEXT("b.jpg"), 0, 0), S_OK);
    const std::string b = BoundaryOf(form.Get());
    const std::string expected =
        "--" + b + "\r\nContent-Disposition: form-data; name=\"title\"\r\n\r\n" +
        "Gr\xC3\xBC\xC3\x9F"
        "e \xF0\x9F\x98\x80\x01\r\n\ttab\r\n" +
        "--" + b + "\r\nContent-Disposition: form-data; name=\"is_public\"\r\n\r\n4000000000\r\n" + "--" + b +
        "\r\nContent-Disposition: form-data; name=\"photo\"; filename=\"b.jpg\"\r\n" +
        "Content-Type: image/jpeg\r\n\r\n" + picture->Bytes() + "\r\n--" + b + "--\r\n";
    EXPECT_EQ(LengthOf(form.Get()), expected.size());
    STATSTG status{};
    EXPECT_EQ(body->Stat(&status, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(status.cbSize.QuadPart, expected.size());
    for (const ULONG chunk : {1u, 7u, 65536u})
    {
        EXPECT_EQ(ReadAll(body.Get(), chunk), expected) << chunk;
        EXPECT_EQ(body->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr), S_OK);
    }
}

TEST_F(MultipartFormTest, FileNameIsQuotedAndWithoutFolders)
{
    const std::pair<const WCHAR *, const char *> cases[] = {
        // On Linux a backslash and a colon are letters of the name.
        {TEXT("C:\\Users\\me\\a.jpg"), IsWindowsBuild ? "\"a.jpg\"" : "\"C:%5CUsers%5Cme%5Ca.jpg\""},
        {TEXT("/home/me/\u65E5\u672C.jpg"), "\"\xE6\x97\xA5\xE6\x9C\xAC.jpg\""},
        {TEXT("say \"hi\"\r\nX. y.jpg"), "\"say %22hi%22%0D%0AX. y.jpg\""},
    };
    for (const auto &[name, expected] : cases)
    {
        const auto text = ReadAll(Form(ScriptedStream::Make("x").Get(), name).body.Get(), 4096);
        EXPECT_THAT(text, HasSubstr("filename=" + std::string(expected) + "\r\n"));
    }
}

TEST_F(MultipartFormTest, FileGoesFromItsPresentPosition)
{
    const auto picture = ScriptedStream::Make("0123456789");
    LARGE_INTEGER four{};
    four.QuadPart = 4;
    ASSERT_EQ(picture->Seek(four, STREAM_SEEK_SET, nullptr), S_OK);
    const Form rest(picture.Get());
    for (int pass = 0; pass < 2; ++pass)
    {
        const std::string text = ReadAll(rest.body.Get(), 100);
        EXPECT_EQ(text.size(), LengthOf(rest.form.Get()));
        EXPECT_THAT(text, HasSubstr("\r\n\r\n456789\r\n--"));
        rest.body->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    }
    ASSERT_EQ(form->AddFilePart(TEXT("photo"), picture.Get(), nullptr, TEXT("a"), 0, 0), S_OK);
    EXPECT_THAT(ReadAll(body.Get(), 100), HasSubstr("Content-Type: application/octet-stream\r\n"));
}

TEST_F(MultipartFormTest, BodyOfFourGibibytesFailsItsLength)
{
    const UINT64 frame = LengthOf(Form(ScriptedStream::Make("x").Get()).form.Get()) - 1;
    for (const UINT64 whole : {UINT64(0xFFFFFFFF), UINT64(0x100000000)})
    {
        const auto content = ScriptedStream::Make("x");
        content->claimedSize = whole - frame;
        UINT32 length = 77;
        const bool fits = whole <= 0xFFFFFFFF;
        EXPECT_EQ(Form(content.Get()).form->GetBodyLength(&length),
                  fits ? S_OK : static_cast<HRESULT>(0x800700DF));
        EXPECT_EQ(length, fits ? 0xFFFFFFFFu : 0u);
    }
}

TEST_F(MultipartFormTest, TroubleWithTheFileIsTold)
{
    const auto shrunk = ScriptedStream::Make("12345");
    shrunk->claimedSize = 9;
    HRESULT result = S_OK;
    EXPECT_THAT(ReadAll(Form(shrunk.Get()).body.Get(), 4096, &result), HasSubstr("\r\n\r\n12345"));
    EXPECT_EQ(result, HRESULT_FROM_WIN32(ERROR_HANDLE_EOF));

    const auto broken = ScriptedStream::Make("12345");
    broken->failAt = 3;
    ReadAll(Form(broken.Get()).body.Get(), 4096, &result);
    EXPECT_EQ(result, STG_E_READFAULT);
}

TEST_F(MultipartFormTest, IncompleteCallsAreRefused)
{
    EXPECT_EQ(form->AddNumberField(nullptr, 1), E_INVALIDARG);
    EXPECT_EQ(form->AddTextField(nullptr, TEXT("x")), E_INVALIDARG);
    EXPECT_EQ(form->AddTextField(TEXT("x"), nullptr), E_INVALIDARG);
    EXPECT_EQ(form->AddFilePart(TEXT("x"), nullptr, TEXT("y"), TEXT("z"), 0, 0), E_INVALIDARG);
    EXPECT_EQ(form->GetBodyLength(nullptr), E_INVALIDARG);
    EXPECT_EQ(form->GetContentType(nullptr), E_INVALIDARG);
    LARGE_INTEGER one{};
    one.QuadPart = 1;
    EXPECT_EQ(body->Seek(one, STREAM_SEEK_SET, nullptr), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(body->Seek(LARGE_INTEGER{}, STREAM_SEEK_END, nullptr), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(body->Read(nullptr, 1, nullptr), STG_E_INVALIDPOINTER);
    EXPECT_EQ(body->LockRegion({}, {}, 0), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(body->UnlockRegion({}, {}, 0), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(body->CopyTo(nullptr, {}, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(body->Clone(nullptr), E_NOTIMPL);
    EXPECT_NE(BoundaryOf(form.Get()), BoundaryOf(CMultipartFormData::Make().Get()));
}

TEST(RequestParameters, ValuesBecomeTheTextsOfTheForm)
{
    const auto parameters = CRequestParameters::Make();
    VARIANT value{};
    V_VT(&value) = VT_I4;
    V_I4(&value) = -5;
    ASSERT_EQ(parameters->Add(TEXT("negative"), value), S_OK);
    V_VT(&value) = VT_UI4;
    V_UI4(&value) = 4000000000u;
    ASSERT_EQ(parameters->Add(TEXT("unsigned"), value), S_OK);
    const WCHAR withZero[] = {'a', 0xD800, 0, 'b', 0};
    const BstrOwner text(WideView(withZero, 4));
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = text.Get();
    ASSERT_EQ(parameters->Add(TEXT("title"), value), S_OK);
    V_BSTR(&value) = nullptr;
    ASSERT_EQ(parameters->Add(TEXT("none"), value), S_OK);
    V_VT(&value) = VT_R8;
    EXPECT_EQ(parameters->Add(TEXT("real"), value), DISP_E_BADVARTYPE);
    EXPECT_EQ(parameters->Add(nullptr, value), E_INVALIDARG);

    const ParameterList read = ReadParameters(parameters.Get());
    ASSERT_EQ(read.size(), 4u);
    EXPECT_EQ(read[0].value.View(), "-5");
    EXPECT_EQ(read[1].value.View(), "4000000000");
    EXPECT_EQ(read[2].name, "title");
    EXPECT_EQ(read[2].value.View(), "a\xEF\xBF\xBD"); // up to the zero, as a form's field would be
    EXPECT_EQ(read[3].value.View(), "");
    EXPECT_TRUE(ReadParameters(nullptr).empty());
}

TEST(MimeType, GoesByTheExtension)
{
    const std::pair<const WCHAR *, std::vector<const WCHAR *>> cases[] = {
        {TEXT("image/jpeg"), {TEXT("a.JPG"), TEXT("a.b.jpeg"), TEXT("a.jpe"), TEXT("a.jfif"), TEXT("a.exif")}},
        {TEXT("image/png"), {TEXT("a/b.png")}},
        {TEXT("image/gif"), {TEXT("a.Gif")}},
        {TEXT("image/tiff"), {TEXT("a.tif"), TEXT("A.TIFF")}},
        {TEXT("image/webp"), {TEXT("a.webp")}},
        {TEXT("image/bmp"), {TEXT("a.bmp")}},
        {TEXT("image/heic"), {TEXT("a.heic")}},
        {TEXT("image/heif"), {TEXT("a.heif")}},
        {TEXT("image/avif"), {TEXT("a.avif")}},
        {TEXT("video/quicktime"), {TEXT("a.MOV")}},
        {TEXT("video/mp4"), {TEXT("a.mp4"), TEXT("a.m4v")}},
        {TEXT("video/x-msvideo"), {TEXT("a.avi")}},
        {TEXT("application/octet-stream"),
         {TEXT("jpg"), TEXT("a.jpg/b"), TEXT("a."), TEXT("a.[pg"), TEXT("a.jp")}},
    };
    for (const auto &[expected, names] : cases)
    {
        for (const WCHAR *name : names)
        {
            EXPECT_EQ(WideText(MimeTypeOfFile(name)), expected) << ToUtf8(name);
        }
    }
}
} // namespace
