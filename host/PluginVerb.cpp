#include "host/PluginVerb.h"

#include "com/Hresult.h"

namespace
{
// The window that the plug-in's dialogs belong to. In a terminal nothing of it is seen.
class ParentWindow
{
public:
    ParentWindow()
        : m_window(CreateWindowExW(0, TEXT("Static"), TEXT("Halvora"), 0, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                                   nullptr))
    {
        if (m_window == nullptr)
        {
            ThrowHresult(HRESULT_FROM_WIN32(GetLastError()));
        }
    }
    ~ParentWindow() { DestroyWindow(m_window); }
    ParentWindow(const ParentWindow &) = delete;
    ParentWindow &operator=(const ParentWindow &) = delete;

    HWND Get() const { return m_window; }

private:
    HWND m_window;
};
} // namespace

HRESULT RunVerb(IHalvoraPublishingPlugin &plugin, WideText verb)
{
    const ParentWindow parent;
    WideText noParameters;
    return plugin.Configure(parent.Get(), verb.data(), noParameters.data());
}
