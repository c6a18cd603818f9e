// What the plug-in and components of other makers must agree upon, number by number: nothing of this may change.
#include "HVRPublishToFlickr.h"
#include "HostContract.h"
#include "WebComponents.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace
{
// Both compilers hold a virtual function as its offset in the table, plus 1.
template <class Function>
size_t Slot(Function function)
{
    size_t parts[2];
    static_assert(sizeof function == sizeof parts);
    std::memcpy(parts, &function, sizeof parts);
    return (parts[0] - 1) / sizeof(void *);
}

std::string TextOf(const GUID &identifier)
{
    const auto *const end = identifier.Data4;
    char text[40];
    std::snprintf(text, sizeof(text), "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned long>(identifier.Data1), identifier.Data2, identifier.Data3, end[0], end[1],
                  end[2], end[3], end[4], end[5], end[6], end[7]);
    return text;
}
} // namespace

TEST(Contract, HasItsIdentifiers)
{
    const std::pair<const char *, GUID> cases[] = {
        {"{46519402-3380-4D48-BC76-63FFAA27165C}", CLSID_FlickrPublisher},
        {"{BF23F6E1-E0C8-40DB-B874-A0F973F52DB0}", __uuidof(IHalvoraPublishingPlugin)},
        {"{7EFA3685-EA3E-4B2F-B92D-647C9F7E2F90}", __uuidof(IHalvoraPublishingHost)},
        {"{988665D6-4CE0-4CD9-B7C6-82315FE9E074}", __uuidof(IHalvoraImageMetadata)},
        {"{BA0C952B-7897-4EEB-BB1F-FF5875A8AF21}", CLSID_UsageMetrics},
        {"{9413DC13-54D0-435C-A93C-8F48B49B4E78}", __uuidof(IUsageMetrics)},
        {"{BFC612F3-839F-427E-A454-5278A6F37C2E}", __uuidof(IUploadProgressCallback)},
        {"{5DC9820B-696D-488D-B09C-73CC4D72C85B}", CLSID_OAuthWebClient},
        {"{5A7BF126-2D24-4C2B-AED0-7025E1D0B20F}", __uuidof(IOAuthWebClient)},
        {"{C6338984-E934-4679-A284-D35BEC55674C}", CLSID_RequestParameters},
        {"{7F6965D4-9655-4145-BFE6-8619711AFC40}", __uuidof(IRequestParameters)},
        {"{0BE46AE2-B21F-4105-97BB-2B1D670C5D42}", CLSID_MultipartFormData},
        {"{1BD7B0DE-8F45-4407-8BCD-830BD35D15E7}", __uuidof(IMultipartFormData)},
    };
    for (const auto &[text, identifier] : cases)
    {
        EXPECT_EQ(TextOf(identifier), text);
    }
}

TEST(Contract, HasItsOperationsInTheirSlots)
{
    EXPECT_EQ(Slot(&IHalvoraPublishingPlugin::Initialize), 7u);
    EXPECT_EQ(Slot(&IHalvoraPublishingPlugin::Configure), 16u);
    EXPECT_EQ(Slot(&IHalvoraPublishingPlugin::Cancel), 19u);
    EXPECT_EQ(Slot(&IHalvoraPublishingHost::GetItemList), 5u);
    EXPECT_EQ(Slot(&IHalvoraPublishingHost::GetItemRecord), 6u);
    EXPECT_EQ(Slot(&IHalvoraPublishingHost::WriteLogEntry), 10u);
    EXPECT_EQ(Slot(&IHalvoraImageMetadata::ReadImageMetadata), 3u);
    EXPECT_EQ(Slot(&IHalvoraImageMetadata::WriteImageMetadata), 4u);
    EXPECT_EQ(Slot(&IOAuthWebClient::SetService), 3u);
    EXPECT_EQ(Slot(&IOAuthWebClient::GetAuthorizationUrl), 4u);
    EXPECT_EQ(Slot(&IOAuthWebClient::GetAccessToken), 5u);
    EXPECT_EQ(Slot(&IOAuthWebClient::SetAccessToken), 6u);
    EXPECT_EQ(Slot(&IOAuthWebClient::RestRequest), 8u);
    EXPECT_EQ(Slot(&IOAuthWebClient::UploadRequest), 11u);
    EXPECT_EQ(Slot(&IOAuthWebClient::GetMimeTypeForFile), 12u);
    EXPECT_EQ(Slot(&IMultipartFormData::AddFilePart), 5u);
    EXPECT_EQ(Slot(&IMultipartFormData::GetContentType), 7u);
}
