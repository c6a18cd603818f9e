// Cost of plug-in and host without the network: a progress report, a state line, one item of a run with web
// components that answer at once, the journal's part in it.
#include "core/NumberFormat.h"
#include "host/Journal.h"
#include "plugin/FlickrPublisher.h"
#include "publish/ProgressReport.h"
#include "settings/StateLine.h"
#include "tests/doubles/PublishFixture.h"

#include <benchmark/benchmark.h>

#include <fstream>

namespace
{
class ScratchFolder
{
public:
    ~ScratchFolder() { std::filesystem::remove_all(m_path); }
    const std::filesystem::path &Path() const { return m_path; }

private:
    const std::filesystem::path m_path = [] {
        std::string path = std::filesystem::temp_directory_path() / "publish-bench-XXXXXX";
        return std::filesystem::path(mkdtemp(path.data()));
    }();
};

// Windows and estimator of a run of 40 items.
struct ProgressFixture
{
    CallRecord record;
    FakeProgressWindows fakes{record};
    ProgressWindows windows{fakes.Bar(), fakes.StatusText()};
    PublishStatistics statistics;
    LocaleNumberFormat numbers;
    ProgressDisplay display{windows, statistics, numbers, SystemTicks};

    ProgressFixture() { statistics.Start(40 * UnitsPerItem, SystemTicks()); }
};

// A report that moves the bar by a percent and writes the status line.
void ProgressReportOfAPercent(benchmark::State &state)
{
    ProgressFixture fixture;
    UINT32 done = 0;
    for (auto _ : state)
    {
        done = done % 100 + 1;
        ShowProgress(fixture.display, UPLOAD_BYTES, 100, done);
    }
}
BENCHMARK(ProgressReportOfAPercent);

// The usual report: the whole percentage is the same as before.
void ProgressReportWithinAPercent(benchmark::State &state)
{
    ProgressFixture fixture;
    ShowProgress(fixture.display, UPLOAD_BYTES, 1000000, 500000);
    for (auto _ : state)
    {
        ShowProgress(fixture.display, UPLOAD_BYTES, 1000000, 500001);
    }
}
BENCHMARK(ProgressReportWithinAPercent);

void StateLine(benchmark::State &state)
{
    SettingsKey key;
    AccountRecord account;
    account.OAuthToken = BstrOwner(TEXT("t"));
    account.OAuthTokenSecret = BstrOwner(TEXT("s"));
    SettingsBlock settings;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(ComposeDisplayState(account, settings));
    }
}
BENCHMARK(StateLine);

// A whole run of one picture, its signature, form and reply included, without a network.
void OneItem(benchmark::State &state)
{
    PublishFixture fixture;
    fixture.AddItem("one", TEXT("jpg"), JpegBytes);
    auto plugin = CFlickrPublisher::Make();
    if (FAILED(plugin->Initialize(fixture.Host.Get(), 1033, static_cast<IStream *>(fixture.Stream.Get()), 0)))
    {
        state.SkipWithError("the plug-in could not be initialised");
        return;
    }
    for (auto _ : state)
    {
        state.PauseTiming();
        fixture.Web.Clear();
        fixture.Web.Answer(OkReply);
        state.ResumeTiming();
        plugin->Publish(fixture.Windows.Bar(), fixture.Windows.StatusText());
    }
    if (!fixture.Record.LinesOf("log error ").empty())
    {
        state.SkipWithError("an item failed");
    }
}
BENCHMARK(OneItem);

// What the journal writes for a picture, before it is sent and after the reply, once 20,000 are in it.
void JournalOfOneItem(benchmark::State &state)
{
    const ScratchFolder folder;
    Journal journal{Profile(folder.Path())};
    const JournalAccount account{"https://www.flickr.com/photos/a/", "token"};
    int number = 0;
    const auto enter = [&] {
        const std::string name = std::to_string(++number);
        FileState file{folder.Path() / (name + ".jpg"), 2'500'000, number, name};
        file.sha256.insert(0, 64 - name.size(), '0');
        journal.Settle(journal.Begin(account, file), JournalOutcome::Published, name, "");
    };
    while (number < 20'000)
    {
        enter();
    }
    for (auto _ : state)
    {
        enter();
    }
}
BENCHMARK(JournalOfOneItem)->Iterations(1000)->Unit(benchmark::kMicrosecond)->UseRealTime();

// The digest by which the journal knows a file of 2.5 MB again.
void DigestOfOneItem(benchmark::State &state)
{
    const ScratchFolder folder;
    std::ofstream(folder.Path() / "a.jpg", std::ios::binary) << std::string(2'500'000, 'x');
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(DigestOfFile(folder.Path() / "a.jpg"));
    }
}
BENCHMARK(DigestOfOneItem)->Unit(benchmark::kMicrosecond);
} // namespace

int main(int argc, char **argv)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    CoUninitialize();
    return 0;
}
