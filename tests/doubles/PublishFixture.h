// Everything that surrounds the plug-in, faked or private to the test: host, windows, web components,
// imaging, usage counter, settings key, init-data stream, and picture files.
#pragma once

#include "tests/doubles/CallRecord.h"
#include "tests/doubles/ClassInPlace.h"
#include "tests/doubles/FakeHost.h"
#include "tests/doubles/FakeImaging.h"
#include "tests/doubles/FakeProgressWindows.h"
#include "tests/doubles/FakeWebComponents.h"
#include "tests/doubles/MemoryStream.h"
#include "tests/doubles/SettingsKey.h"
#include "tests/host/TemporaryFolder.h"

#include "HVRPublishToFlickr.h"

class PublishFixture
{
public:
    PublishFixture();

    // Adds an item of files that exist, all with the same content.
    void AddItem(const std::string &name, const WCHAR *extensions, std::string_view content);

    // The path of an item's file as log lines show it.
    std::string PathOf(const std::string &file) const;

    // The lines that begin with "log " and "status ", moves of the bar, and "usage CATEGORY ACTION COUNT", in order.
    CallRecord Record;
    ComPtr<FakeHost> Host = FakeHost::Make(Record);
    FakeProgressWindows Windows{Record};
    FakeWebComponents Web;
    FakeImaging Imaging;
    ClassInPlace Usage;
    SettingsKey Settings;
    ComPtr<MemoryStream> Stream = MemoryStream::Make(AuthorizedInitData());

    // Init-data with the token pair "t" and "s" and the full name "f".
    static std::string AuthorizedInitData();

private:
    TemporaryFolder m_folder;
};

inline constexpr std::string_view JpegBytes = "\xFF\xD8\xFF\xE0 not much of a picture";
inline constexpr std::string_view GifBytes = "GIF89a not much of a picture";
inline constexpr const WCHAR *OkReply = TEXT("<rsp stat=\"ok\"><photoid>1</photoid></rsp>");
