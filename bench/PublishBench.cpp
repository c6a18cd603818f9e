// Cost of the plug-in without the network: a progress report, a state line, one item of a run with web
// components that answer at once.
#include "core/NumberFormat.h"
#include "plugin/FlickrPublisher.h"
#include "publish/ProgressReport.h"
#include "settings/StateLine.h"
#include "tests/doubles/PublishFixture.h"

#include <benchmark/benchmark.h>

namespace
{
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
} // namespace

int main(int argc, char **argv)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    CoUninitialize();
    return 0;
}
