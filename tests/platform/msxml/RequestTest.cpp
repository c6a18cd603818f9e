// Requests without a server: what can be asked when.
#include "RequestUse.h"
#include "tests/platform/KnownGaps.h"

#include <gmock/gmock.h>

namespace
{
// No server has this port, so near as the system tells.
const char *const ClosedPort = "http://127.0.0.1:1/";

class Request : public testing::TestWithParam<const CLSID *>
{
};

INSTANTIATE_TEST_SUITE_P(BothClasses, Request, testing::Values(&ServerRequestClass, &UserRequestClass));

TEST_P(Request, HasNothingToReadAndNothingToSendBeforeItIsOpen)
{
    RequestUse use(*GetParam());
    ASSERT_EQ(S_OK, use.creation);
    LONG number = 77;
    BstrOwner text;
    ComPtr<IDispatch> document;
    EXPECT_EQ(S_OK, use.request->get_readyState(&number));
    EXPECT_EQ(0, number);
    EXPECT_EQ(E_FAIL, use.Send());
    EXPECT_EQ(E_FAIL, use.request->setRequestHeader(Bstr("X-A").Get(), Bstr("b").Get()));
    EXPECT_EQ(E_FAIL, use.request->get_status(&number));
    EXPECT_EQ(E_FAIL, use.request->get_statusText(text.Put()));
    EXPECT_EQ(E_FAIL, use.request->get_responseText(text.Put()));
    EXPECT_EQ(E_FAIL, use.request->get_responseXML(document.Put()));
    EXPECT_FALSE(document);
    // Wine's classes stay in an apartment of their own, and what leads there stops at the null.
    const HRESULT nullPointer = UnderWine ? static_cast<HRESULT>(0x800706F4) : E_INVALIDARG;
    EXPECT_EQ(nullPointer, use.request->get_status(nullptr));
    EXPECT_EQ(nullPointer, use.request->get_responseXML(nullptr));
    EXPECT_EQ(S_OK, use.request->abort());
}

TEST_P(Request, OpensWhatIsAnAddressAndAMethod)
{
    RequestUse use(*GetParam());
    ASSERT_EQ(S_OK, use.creation);
    EXPECT_EQ(S_OK, use.Open(ClosedPort));
    LONG state = 77;
    EXPECT_EQ(S_OK, use.request->get_readyState(&state));
    EXPECT_EQ(1, state);
    EXPECT_EQ(E_INVALIDARG, use.request->setRequestHeader(nullptr, nullptr));
    EXPECT_EQ(S_OK, use.request->setRequestHeader(Bstr("X-A").Get(), Bstr("b").Get()));
    EXPECT_TRUE(FAILED(use.request->open(nullptr, Bstr(ClosedPort).Get(), VARIANT{}, VARIANT{}, VARIANT{})));
    EXPECT_TRUE(FAILED(use.request->open(Bstr("GET").Get(), nullptr, VARIANT{}, VARIANT{}, VARIANT{})));
    EXPECT_EQ(S_OK, use.request->abort());
    EXPECT_EQ(E_FAIL, use.Send());
}

TEST_P(Request, FailsToSendWhereNobodyListensAndCanBeUsedAgain)
{
    RequestUse use(*GetParam());
    ASSERT_EQ(S_OK, use.creation);
    for (int round = 0; round < 2; ++round)
    {
        const HRESULT result = use.Get(ClosedPort);
        // Wine has codes of its own for this.
        EXPECT_EQ(!UnderWine, result == static_cast<HRESULT>(0x80072EFD)) << std::hex << result;
        EXPECT_TRUE(FAILED(result));
        EXPECT_EQ(-1, use.Status());
    }
}

TEST(RequestClasses, OnlyTheServersCanBeGivenAProxy)
{
    for (const CLSID *requestClass : {&ServerRequestClass, &UserRequestClass})
    {
        RequestUse use(*requestClass);
        ASSERT_EQ(S_OK, use.creation);
        ComPtr<IDispatch> automation;
        EXPECT_EQ(S_OK, use.request->QueryInterface(__uuidof(IDispatch), automation.PutVoid()));
        for (const IID &iid : {__uuidof(IServerXMLHTTPRequest), __uuidof(IServerXMLHTTPRequest2)})
        {
            ComPtr<IUnknown> server;
            // Wine's class has the first of the two interfaces alone.
            const bool has =
                requestClass == &ServerRequestClass && (!UnderWine || iid == __uuidof(IServerXMLHTTPRequest));
            EXPECT_EQ(has ? S_OK : E_NOINTERFACE, use.request->QueryInterface(iid, server.PutVoid()));
        }
    }
}
} // namespace
