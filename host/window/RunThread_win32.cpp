#include "host/window/RunThread_win32.h"

#include "host/Apartment_win32.h"

RunThread::RunThread(IHalvoraPublishingPlugin &plugin, HWND bar, HWND status, HWND window, UINT endMessage)
    : m_thread([&plugin, bar, status, window, endMessage] {
          const Apartment apartment;
          const HRESULT result = plugin.Publish(bar, status);
          PostMessageW(window, endMessage, static_cast<WPARAM>(static_cast<ULONG>(result)), 0);
      })
{
}
