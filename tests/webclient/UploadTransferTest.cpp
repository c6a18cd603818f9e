// Uploads while they run: the caller's stop, connecting, and memory.
#include "tests/webclient/ScriptedStream.h"
#include "tests/webclient/ServiceFixture.h"

#include <chrono>
#include <cstdio>

namespace
{
using testing::HasSubstr;
using namespace std::chrono_literals;

constexpr UINT32 ThirtyMegabytes = 30'000'000;

class UploadTransferTest : public ServiceFixture
{
};

TEST_F(UploadTransferTest, FailingAnswerEndsTheTransferWithItsCode)
{
    HttpTestServer &server = StartServer();
    const auto client = Client();
    const auto progress = RecordedProgress::Make([](const RecordedProgress::ProgressEntry &entry) {
        return entry.code == UPLOAD_BYTES && entry.done > 0 ? static_cast<HRESULT>(0x80041234) : S_OK;
    });
    const UploadOutcome outcome =
        Upload(client.Get(), ScriptedStream::MakeEndless(ThirtyMegabytes).Get(), ThirtyMegabytes, progress.Get());
    EXPECT_EQ(outcome.result, static_cast<HRESULT>(0x80041234));
    EXPECT_LT(progress->entries.back().done, ThirtyMegabytes);
    EXPECT_EQ(progress->entries.back().total, ThirtyMegabytes);

    const auto never = RecordedProgress::Make([](const RecordedProgress::ProgressEntry &) { return E_ABORT; });
    EXPECT_EQ(Upload(client.Get(), ScriptedStream::MakeEndless(10).Get(), 10, never.Get()).result, E_ABORT);
    EXPECT_EQ(never->entries.size(), 1u);
    EXPECT_LE(server.Connections(), 1);
}

TEST_F(UploadTransferTest, ConnectingHasALimit)
{
    const SilentListener listener;
    ConnectTo(listener.Port());
    TransportLimits limits;
    limits.connect = 500ms;
    const UploadOutcome outcome =
        Upload(ClientWithLimits(limits).Get(), ScriptedStream::MakeEndless(10).Get(), 10);
    EXPECT_EQ(outcome.result, static_cast<HRESULT>(0x80072EE2));
    EXPECT_THAT(outcome.Description(), HasSubstr("timed out"));
}

long PeakKilobytes()
{
    long peak = 0;
    std::unique_ptr<FILE, int (*)(FILE *)> status(std::fopen("/proc/self/status", "r"), std::fclose);
    for (char line[256]; status && std::fgets(line, sizeof(line), status.get()) != nullptr;)
    {
        std::sscanf(line, "VmHWM: %ld kB", &peak);
    }
    return peak;
}

TEST_F(UploadTransferTest, LargeBodiesPassThroughLittleMemory)
{
#ifdef __SANITIZE_ADDRESS__
    constexpr UINT32 size = 100'000'000; // the sanitizer keeps memory of its own
    constexpr long limit = 1'000'000;
#else
    constexpr UINT32 size = 1'500'000'000;
    constexpr long limit = 48 * 1024;
#endif
    HttpTestServer &server = StartServer();
    const auto progress = RecordedProgress::Make();
    const UploadOutcome outcome =
        Upload(Client().Get(), ScriptedStream::MakeEndless(size).Get(), size, progress.Get());
    EXPECT_EQ(outcome.result, S_OK) << outcome.Description();
    ASSERT_EQ(server.Requests().size(), 1u);
    EXPECT_EQ(server.Requests()[0].bodyBytes, size);
    EXPECT_EQ(progress->entries.back().done, size);
    EXPECT_LT(PeakKilobytes(), limit);
}
} // namespace
