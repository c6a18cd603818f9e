// A fake of the usage counter, for a ClassInPlace.
//
// Lines of the record: "usage CATEGORY ACTION COUNT".
#pragma once

#include "com/ComObject.h"
#include "tests/doubles/CallRecord.h"

#include "HostContract.h"

class FakeUsageMetrics final : public ComObject<FakeUsageMetrics, IUsageMetrics>
{
public:
    explicit FakeUsageMetrics(CallRecord &record) : m_record(record) {}

    STDMETHODIMP RecordUsage(LPCWSTR category, LPCWSTR action, INT32 count) noexcept override
    {
        m_record.Add("usage " + Narrow(category) + " " + Narrow(action) + " " + std::to_string(count));
        return E_FAIL;
    }

private:
    CallRecord &m_record;
};
