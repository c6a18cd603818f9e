// One upload outside a run: what an upload needs beside the host, the file and the options.
#pragma once

#include "account/AccountRecord.h"
#include "com/BstrOwner.h"
#include "com/ComObject.h"
#include "core/VersionBlock.h"
#include "publish/UploadRequest.h"
#include "settings/SettingsStore.h"

#include <filesystem>
#include <vector>

class SingleUpload
{
public:
    SingleUpload()
    {
        m_account.OAuthToken = BstrOwner(TEXT("t"));
        m_account.OAuthTokenSecret = BstrOwner(TEXT("s"));
    }

    // With all groups on, at 300 dpi.
    static UploadOptions Options(UINT32 mode)
    {
        UploadOptions options;
        options.Mode = mode;
        options.WriteCopyright = options.WriteEXIF = options.WriteXMP = options.WriteGPS = options.WriteIPTC =
            true;
        options.PrintDpi = 300;
        return options;
    }

    // Under the name p.jpg. Pauses receives the milliseconds of each wait.
    HRESULT Run(IHalvoraPublishingHost *host, const std::filesystem::path &file, const UploadOptions &options)
    {
        Pauses.clear();
        const auto progress = Progress::Make();
        const RunContext run{host,
                             nullptr,
                             progress.Get(),
                             m_account,
                             m_version,
                             m_settings,
                             m_statistics,
                             m_windows,
                             m_cancel,
                             SystemTicks,
                             [this](DWORD milliseconds) { Pauses.push_back(milliseconds); }};
        ComPtr<IUnknown> reply;
        return UploadOneFile(run, file.string<WCHAR>().c_str(), TEXT("p.jpg"), reply, options);
    }

    std::vector<DWORD> Pauses;

private:
    class Progress final : public ComObject<Progress, IUploadProgressCallback>
    {
    public:
        STDMETHODIMP OnUploadProgress(UINT32, UINT32, UINT32) noexcept override { return S_OK; }
    };

    AccountRecord m_account;
    VersionBlock m_version = VersionBlock::OfThisModule();
    SettingsBlock m_settings;
    PublishStatistics m_statistics;
    ProgressWindows m_windows;
    CancelFlags m_cancel;
};
