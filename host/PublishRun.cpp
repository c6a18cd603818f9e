#include "host/PublishRun.h"

#include "host/Apartment.h"
#include "host/PluginSession.h"
#include "host/ProgressWindows.h"
#include "host/Terminal_posix.h"

#include <atomic>
#include <thread>

namespace
{
constexpr std::chrono::milliseconds WaitingStep(50);

// Turns interrupts into calls of Cancel, each one more urgent than the one before.
class Canceller
{
public:
    Canceller(IHalvoraPublishingPlugin &plugin, LiveDisplay &display, SignalWatch &signals)
        : m_plugin(plugin), m_display(display), m_signals(signals)
    {
    }

    bool IsCancelled() const { return m_interrupts > 0; }

    void Interrupt()
    {
        switch (++m_interrupts)
        {
        case 1:
            m_plugin.Cancel(FALSE);
            m_display.Log(1, "Finishing the current picture; press Ctrl-C again to stop it.");
            break;
        case 2:
            m_plugin.Cancel(TRUE);
            break;
        default:
            m_display.EndProgress();
            m_signals.EndProcessByInterrupt();
        }
    }

    void Terminate()
    {
        if (m_interrupts < 2)
        {
            m_interrupts = 2;
            m_plugin.Cancel(TRUE);
        }
    }

private:
    IHalvoraPublishingPlugin &m_plugin;
    LiveDisplay &m_display;
    SignalWatch &m_signals;
    int m_interrupts = 0;
};
} // namespace

RunEnd RunPublication(IHalvoraPublishingPlugin &plugin, IUploadObserver &observer, LiveDisplay &display,
                      SignalWatch &signals, const std::function<void()> &onCancel)
{
    const ProgressWindows windows(
        [&](const ProgressView &view) { display.ShowProgress(view, LiveDisplay::Clock::now()); });
    display.Resize(TerminalColumns());
    Canceller canceller(plugin, display, signals);
    RunEnd end;
    std::atomic<bool> over = false;
    std::thread worker([&] {
        {
            const Apartment apartment;
            const UploadObservation observed(observer);
            end.result = plugin.Publish(windows.Bar(), windows.Status());
        }
        over = true;
        signals.Wake();
    });
    while (!over)
    {
        switch (signals.Wait(WaitingStep))
        {
        case RunSignal::Interrupt:
            canceller.Interrupt();
            onCancel();
            break;
        case RunSignal::Terminate:
            canceller.Terminate();
            onCancel();
            break;
        case RunSignal::Resize:
            display.Resize(TerminalColumns());
            break;
        case RunSignal::None:
            break;
        }
        display.Refresh(LiveDisplay::Clock::now());
    }
    worker.join();
    display.EndProgress();
    end.cancelled = canceller.IsCancelled();
    return end;
}

bool WaitBetweenRuns(std::chrono::seconds pause, LiveDisplay &display, SignalWatch &signals)
{
    display.Log(2, "Trying again in " + std::to_string(pause.count()) + " seconds. Ctrl-C cancels.");
    const auto end = LiveDisplay::Clock::now() + pause;
    while (LiveDisplay::Clock::now() < end)
    {
        const RunSignal signal = signals.Wait(WaitingStep);
        if (signal == RunSignal::Interrupt || signal == RunSignal::Terminate)
        {
            return false;
        }
    }
    return true;
}
