// Registers the host of a run as the one to whom the web component tells what the service answered.
#pragma once

#include "WebComponents.h"

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
