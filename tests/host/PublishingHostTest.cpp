#include "host/PublishingHost.h"

#include "tests/doubles/ReplyDocuments.h"
#include "tests/host/TemporaryFolder.h"

#include "host/FileNames.h"
#include "host/PluginSession.h"

#include "com/BstrOwner.h"
#include "com/ComObject.h"
#include "com/ComPtr.h"
#include "platform/windowscodecs/UncalledMethods.h"
#include "publish/ItemRecord.h"

#include <wincodec.h>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
class AnsweringWriter final : public UncalledOfMetadataQueries<ComObject<AnsweringWriter, IWICMetadataQueryWriter>>
{
public:
    explicit AnsweringWriter(HRESULT removal) : m_removal(removal) {}

    STDMETHODIMP SetMetadataByName(LPCWSTR, const PROPVARIANT *) noexcept override
    {
        ++settings;
        return S_OK;
    }
    STDMETHODIMP RemoveMetadataByName(LPCWSTR) noexcept override
    {
        return SUCCEEDED(m_removal) ? WINCODEC_ERR_PROPERTYNOTFOUND : m_removal;
    }
    STDMETHODIMP GetMetadataByName(LPCWSTR, PROPVARIANT *) noexcept override { return E_NOTIMPL; }

    int settings = 0;

private:
    const HRESULT m_removal;
};

class PublishingHostTest : public testing::Test
{
protected:
    static ItemCollection TwoItems()
    {
        ItemCollection collection;
        // As a byte that is no UTF-8 arrives.
        collection.items.push_back({PathOfText(TEXT("/p/caf") + WideText(1, 0xDCE9)), {"tif", "jpg"}});
        collection.items.push_back({"/p/two", {"png"}});
        return collection;
    }

    RunRecord m_record{TwoItems()};
    std::vector<std::string> m_log;
    ComPtr<PublishingHost> NewHost(std::function<MetadataSupport()> support)
    {
        return PublishingHost::Make(
            m_record,
            [this](int level, const std::string &source, const std::string &message) {
                m_log.push_back(std::to_string(level) + " " + source + ": " + message);
            },
            std::move(support));
    }

    // The plug-in turns to the item.
    void Begin(UINT64 item)
    {
        ItemRecordOwner record;
        EXPECT_EQ(m_host->GetItemRecord(item, record.Get()), S_OK);
    }

    ComPtr<PublishingHost> m_host = NewHost(TryWritingMetadata);
};
} // namespace

// The web component creates the class of the observer; what it gets is the host of the run.
TEST_F(PublishingHostTest, LearnsFromTheWebComponentWhatTheServiceGave)
{
    const struct
    {
        HRESULT result;
        const WCHAR *reply;
        ServiceIds ids;
    } cases[] = {
        {S_OK, TEXT("<rsp stat=\"ok\"><photoid>53-1</photoid></rsp>"), {"53-1", ""}},
        {S_OK, TEXT("<rsp stat=\"ok\"><ticketid>2830-7</ticketid></rsp>"), {"", "2830-7"}},
        {S_OK, TEXT("<rsp stat=\"fail\"><photoid>1</photoid><err code=\"5\" msg=\"no\"/></rsp>"), {}},
        {E_FAIL, TEXT("<HttpError HttpStatus=\"503\"/>"), {}},
        {E_FAIL, nullptr, {}},
    };
    const auto create = [](ComPtr<IUploadObserver> &observer) {
        return CoCreateInstance(CLSID_UploadObserver, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUploadObserver),
                                observer.PutVoid());
    };
    for (const auto &one : cases)
    {
        const UploadObservation observed(*m_host.Get());
        ComPtr<IUploadObserver> observer;
        ASSERT_EQ(create(observer), S_OK);
        m_record.TryAgain(1);
        Begin(2);
        EXPECT_EQ(observer->OnUploadReply(one.result, one.reply ? MakeDocument(one.reply).Get() : nullptr), S_OK);
        EXPECT_EQ(m_record.IdsOf(1).photo, one.ids.photo);
        EXPECT_EQ(m_record.IdsOf(1).ticket, one.ids.ticket);
    }
    ComPtr<IUploadObserver> observer;
    EXPECT_EQ(create(observer), REGDB_E_CLASSNOTREG) << "the run is over";
}

TEST_F(PublishingHostTest, WaitsAsTheServiceAsksWhereAnotherItemFollows)
{
    std::vector<int> pauses;
    m_host->PauseBy([&](std::chrono::seconds pause) { pauses.push_back(static_cast<int>(pause.count())); });
    const auto fail = [&](UINT64 item, const WCHAR *words) {
        Begin(item);
        m_host->WriteLogEntry(3, TEXT("Flickr"), words);
    };
    const WCHAR *const asks = TEXT("Could not publish \"p\" (Error code: 0x801901ad) HTTP Status = 429: Too Many ")
        TEXT("Requests, The service asks to wait 30 seconds");
    fail(1, asks);
    fail(1, TEXT("(Error code: 0x801901ad) The service asks to wait 99999 seconds"));
    fail(1, TEXT("\"The service asks to wait 5 seconds.jpg\" (Error code: 0x801901f7) HTTP Status = 503: Busy"));
    fail(2, asks);
    EXPECT_THAT(pauses, ElementsAre(30, 600));
}

TEST_F(PublishingHostTest, MetadataThatCanNotBeReadFailInCodes)
{
    ItemRecord record = {};
    IWICBitmapSource *source = nullptr;
    const TemporaryFolder folder;
    const WideText strange = TextOfPath(folder.Path() / "x.jpg");
    EXPECT_EQ(m_host->ReadImageMetadata(strange.c_str(), 0, 0, nullptr, READ_METADATA_ONLY, &record),
              HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(m_host->ReadImageMetadata(nullptr, 0, 0, nullptr, READ_METADATA_ONLY, &record), E_INVALIDARG);
    EXPECT_EQ(m_host->ReadImageMetadata(strange.c_str(), 0, 0, &source, READ_METADATA_AND_PICTURE, &record),
              HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(m_host->ReadImageMetadata(strange.c_str(), 0, 0, nullptr, READ_METADATA_AND_PICTURE, &record),
              E_INVALIDARG);
    EXPECT_EQ(record.Iptc.Texts[IPTC_TEXT_CAPTION], nullptr);
}

// What the imaging component does decides, not what its writer answers.
TEST_F(PublishingHostTest, WritesWhatTheImagingComponentCanKeepApart)
{
    using enum CopiedMetadata;
    constexpr HRESULT Refused = WINCODEC_ERR_UNSUPPORTEDOPERATION;
    const auto copies = HasSubstr("2 halvora: This system's imaging component copies metadata");
    const struct
    {
        MetadataSupport support;
        HRESULT removal;
        HRESULT intact;
        HRESULT processed;
        bool sets; // in a processed picture
        testing::Matcher<std::vector<std::string>> warnings;
    } cases[] = {
        {{Removable, true}, S_OK, S_OK, S_OK, true, IsEmpty()},
        {{Removable, true}, E_NOTIMPL, E_NOTIMPL, S_OK, true, IsEmpty()},
        {{None, true}, E_NOTIMPL, S_OK, S_OK, true, IsEmpty()},
        {{None, false}, E_NOTIMPL, S_OK, S_OK, false, ElementsAre(HasSubstr("can't write metadata"))},
        {{Lasting, true}, S_OK, Refused, S_OK, true, ElementsAre(copies, copies)},
        {{Unknown, true}, S_OK, Refused, S_OK, true, ElementsAre(copies, copies)},
    };
    const BstrOwner caption(TEXT("caption"));
    ItemRecord record = {};
    record.Iptc.Texts[IPTC_TEXT_CAPTION] = caption.Get();
    for (const auto &c : cases)
    {
        SCOPED_TRACE(&c - cases);
        m_log.clear();
        const auto host = NewHost([&c] { return c.support; });
        const auto writer = AnsweringWriter::Make(c.removal);
        for (int picture = 0; picture < 2; ++picture)
        {
            EXPECT_EQ(host->WriteImageMetadata(writer.Get(), 0, 1, &record, 1, 1, 1, 1, 1, 1, FALSE), c.intact);
        }
        writer->settings = 0;
        EXPECT_EQ(host->WriteImageMetadata(writer.Get(), 0, 1, &record, 1, 1, 1, 1, 1, 1, TRUE), c.processed);
        EXPECT_EQ(writer->settings > 0, c.sets);
        EXPECT_THAT(m_log, c.warnings);
    }
}
