#include "tests/doubles/PublishFixture.h"

#include "core/TextPieces.h"

#include <atomic>
#include <fstream>
#include <random>

namespace
{
std::filesystem::path NewFolder()
{
    static std::atomic<int> number{0};
    const auto name = "halvora-publish-" + std::to_string(std::random_device()()) + "-" + std::to_string(++number);
    const auto folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(folder);
    return folder;
}
} // namespace

PublishFixture::PublishFixture()
    : Usage(CLSID_UsageMetrics,
            [this](REFIID iid, void **object) {
                return FakeUsageMetrics::CreateInstance(nullptr, iid, object, Record);
            }),
      m_folder(NewFolder())
{
    Host->Metadata->Calls = &Imaging.Calls;
    Host->Metadata->Picture = [this] { return Imaging.MakePicture(); };
    Settings.Set(TEXT("JPEGMode"), UINT32{0});
}

PublishFixture::~PublishFixture()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void PublishFixture::AddItem(const std::string &name, const WCHAR *extensions, std::string_view content)
{
    const auto stem = m_folder / name;
    for (const WideView extension : SplitText(extensions, TEXT(';')))
    {
        std::ofstream file(stem.string() + "." + Narrow(extension), std::ios::binary);
        file << content;
    }
    Host->Items.push_back({stem.string<WCHAR>(), WideText(extensions)});
}

std::string PublishFixture::PathOf(const std::string &file) const
{
    return Narrow((m_folder / file).string<WCHAR>());
}

std::string PublishFixture::AuthorizedInitData()
{
    // Between the texts: no user name. Behind them: neither the photos' address nor the level of the account.
    const std::string token("\x01\x04\0\0\0t\0\0\0\x04\0\0\0s\0\0\0\0\0\0\0\x04\0\0\0f\0\0\0", 29);
    return token + std::string(2 * 4 + 8, '\0');
}
