#include "tests/doubles/PublishFixture.h"

#include "com/ComObject.h"
#include "core/TextPieces.h"

#include "HostContract.h"

namespace
{
class UsageMetrics final : public ComObject<UsageMetrics, IUsageMetrics>
{
public:
    explicit UsageMetrics(CallRecord &record) : m_record(record) {}

    STDMETHODIMP RecordUsage(LPCWSTR category, LPCWSTR action, INT32 count) noexcept override
    {
        m_record.Add("usage " + Narrow(category) + " " + Narrow(action) + " " + std::to_string(count));
        return E_FAIL;
    }

private:
    CallRecord &m_record;
};
} // namespace

PublishFixture::PublishFixture()
    : Usage(CLSID_UsageMetrics, [this](REFIID iid, void **object) {
          return UsageMetrics::CreateInstance(nullptr, iid, object, Record);
      })
{
    Host->Metadata->Calls = &Imaging.Calls;
    Host->Metadata->Picture = [this] { return Imaging.MakePicture(); };
    Settings.Set(TEXT("JPEGMode"), UINT32{0});
}

void PublishFixture::AddItem(const std::string &name, const WCHAR *extensions, std::string_view content)
{
    for (const WideView extension : SplitText(extensions, TEXT(';')))
    {
        m_folder.Write(name + "." + Narrow(extension), content);
    }
    Host->Items.push_back({(m_folder.Path() / name).string<WCHAR>(), WideText(extensions)});
}

std::string PublishFixture::PathOf(const std::string &file) const
{
    return Narrow((m_folder.Path() / file).string<WCHAR>());
}

std::string PublishFixture::AuthorizedInitData()
{
    // Between the texts: no user name. Behind them: neither the photos' address nor the level of the account.
    const std::string token("\x01\x04\0\0\0t\0\0\0\x04\0\0\0s\0\0\0\0\0\0\0\x04\0\0\0f\0\0\0", 29);
    return token + std::string(2 * 4 + 8, '\0');
}
