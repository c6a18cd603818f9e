// Fakes of the system's two request classes, registered while this object lives, with an answer that is prepared.
//
// Calls of the record: "create server", "create plain", "open METHOD URL", "proxy SETTING SERVERS BYPASS", "send",
// "read reply". A missing text is "(null)".
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

    ComPtr<IDispatch> Reply; // the result of responseXML, may be null

    void Answer(WideView xml);
    CallRecord &Record() const { return m_record; }

private:
    CallRecord &m_record;
    ClassInPlace m_server;
    ClassInPlace m_plain;
};
