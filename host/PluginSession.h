// One use of the plug-in: created through COM, given its host and its stored data, and at the end the
// data taken back.
#pragma once

#include "host/Profile.h"

#include "com/ComPtr.h"
#include "com/WideText.h"

#include "HVRPublishToFlickr.h"
#include "WebComponents.h"

#include <objidl.h>

#include <string>

// Whether data that another process stored meanwhile stay.
enum class Storing
{
    UnlessNewer,
    Always
};

// What a verb of Configure means for the data: what the user granted or withdrew just now holds whatever
// another process stored meanwhile.
Storing StoringAfter(WideView verb, HRESULT result);

class PluginSession
{
public:
    // Creates and initializes the plug-in. Stored data that it refuses are set aside, and it gets none.
    // Throws ProfileError, or the HRESULT of a plug-in that can't be created or initialized.
    PluginSession(IUnknown *host, InitDataStore &store, const CLSID &plugin = __uuidof(FlickrPublisher));

    IHalvoraPublishingPlugin *Plugin() const { return m_plugin.Get(); }

    // Ends the use and stores what the plug-in gave back. Throws ProfileError.
    StoreOutcome Finish(Storing storing = Storing::UnlessNewer);

private:
    HRESULT Initialize(IUnknown *host, const std::string &content);

    InitDataStore &m_store;
    ComPtr<IHalvoraPublishingPlugin> m_plugin;
    ComPtr<IStream> m_stream;
};

// Registers the host of a run as the one to whom the web component tells what the service answered.
class UploadObservation
{
public:
    // On the thread that publishes, and to be destroyed there: on Windows a class object belongs to the threads of
    // its apartment. Where it can't be registered the run goes on without.
    explicit UploadObservation(IUploadObserver &observer) noexcept;
    ~UploadObservation();
    UploadObservation(const UploadObservation &) = delete;
    UploadObservation &operator=(const UploadObservation &) = delete;

private:
    DWORD m_cookie = 0;
};
