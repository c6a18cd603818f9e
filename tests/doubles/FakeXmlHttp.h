// Fakes of the system's two request classes, registered while this object lives. Requests record their calls,
// answer with the prepared reply, and can fail.
//
// Lines of the record: "create server", "create plain", "open METHOD URL", "proxy SETTING SERVERS BYPASS",
// "send", "read reply". A missing text is "(null)".
#pragma once

#include "com/ComPtr.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/ClassInPlace.h"

#include "XmlInterfaces.h"

class FakeXmlHttp
{
public:
    explicit FakeXmlHttp(CallRecord &record);
    FakeXmlHttp(const FakeXmlHttp &) = delete;
    FakeXmlHttp &operator=(const FakeXmlHttp &) = delete;

    HRESULT ServerCreation = S_OK; // of the class that takes a proxy
    HRESULT PlainCreation = S_OK;  // of the other
    HRESULT OpenResult = S_OK;
    HRESULT ProxyResult = S_OK;
    HRESULT SendResult = S_OK;
    HRESULT ReplyResult = S_OK;
    ComPtr<IDispatch> Reply; // the result of responseXML, may be null

    void Answer(WideView xml);
    CallRecord &Record() const { return m_record; }

private:
    CallRecord &m_record;
    ClassInPlace m_server;
    ClassInPlace m_plain;
};
