// The plug-in's preparation of a picture through the system's imaging component and the real host.
#include "host/PublishingHost.h"

#include "tests/host/SampleFiles.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/platform/KnownGaps.h"

#include "com/Hresult.h"
#include "host/FileNames.h"
#include "host/PictureDecoding.h"
#include "publish/ImagePreparation.h"

#include <gmock/gmock.h>

#include <objbase.h>

using testing::HasSubstr;
using testing::Not;
using namespace std::string_literals;

namespace
{
// In the comment of the source, which is published with the copyright group or not at all.
constexpr const char *Secret = "a comment that stays";

std::string BytesOf(IStream *stream)
{
    std::string bytes(size_t{1} << 20, '\0');
    ULONG count = 0;
    EXPECT_GE(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &count), 0);
    bytes.resize(count);
    return bytes;
}

class PreparedPicture : public testing::Test
{
protected:
    PreparedPicture()
    {
        EXPECT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
        MakeSample(m_folder.Path() / "plain.jpg", 96, 64);
        std::string bytes = m_folder.Read("plain.jpg");
        bytes.insert(2, "\xFF\xFE\0"s + static_cast<char>(std::string(Secret).size() + 2) + Secret);
        m_folder.Write("source.jpg", bytes);
    }
    ~PreparedPicture() override { CoUninitialize(); }

    std::string Prepare(const UploadOptions &options, const char *name = "source.jpg")
    {
        ItemTexts texts;
        const auto path = TextOfPath(m_folder.Path() / name);
        const auto picture = PrepareJpeg(
            m_host.Get(), path.c_str(), TEXT("upload"), options, [](DWORD) {}, texts);
        return BytesOf(picture.Get());
    }

    TemporaryFolder m_folder;
    RunRecord m_record{ItemCollection()};
    std::vector<std::string> m_warnings;
    ComPtr<PublishingHost> m_host =
        PublishingHost::Make(m_record, [this](int level, const std::string &, const std::string &message) {
            if (level >= LOG_LEVEL_WARNING)
            {
                m_warnings.push_back(message);
            }
        });
};
} // namespace

TEST_F(PreparedPicture, IsAPictureOfTheWantedSizeWithoutTheGroupsThatAreOff)
{
    for (const UINT32 mode : {SendPixelsIntact, SendProcessed})
    {
        SCOPED_TRACE(mode);
        UploadOptions options;
        options.Mode = mode;
        options.LongEdgePixels = mode == SendProcessed ? 48 : 0;
        const std::string bytes = Prepare(options);
        EXPECT_THAT(bytes, Not(HasSubstr(Secret)));
        const DecodedPicture picture = DecodePicture(m_folder.Write("result.jpg", bytes), 0, nullptr);
        EXPECT_EQ(picture.width, mode == SendProcessed ? 48u : 96u);
        EXPECT_EQ(picture.height, mode == SendProcessed ? 32u : 64u);
    }
    // Under Wine nothing can be read of the source or written into the new file; one warning of each for
    // both pictures.
    EXPECT_EQ(m_warnings.size(), UnderWine ? 2u : 0u);
}

TEST_F(PreparedPicture, AnEndThatIsMissingIsAddedAndTold)
{
    UploadOptions options;
    // Wine's decoder doesn't take it with its pixels intact.
    const std::string whole = m_folder.Read("source.jpg");
    m_folder.Write("endless.jpg", whole.substr(0, whole.size() - 2));
    for (options.Mode = UnderWine ? SendProcessed : SendPixelsIntact; options.Mode <= SendProcessed;
         ++options.Mode)
    {
        m_warnings.clear();
        EXPECT_TRUE(Prepare(options, "endless.jpg").ends_with("\xFF\xD9"));
        EXPECT_THAT(m_warnings, testing::Contains(HasSubstr("endless.jpg lacks the marker that ends")));
    }
}
