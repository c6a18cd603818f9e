// A progress bar and a status line that record the messages sent to them. They belong to the thread that
// creates them; messages of that thread need no message loop.
//
// Lines of the record: "bar position N", "bar state N", "bar range A B", "status TEXT".
#pragma once

#include "tests/doubles/CallRecord.h"

#include <windows.h>

class FakeProgressWindows
{
public:
    explicit FakeProgressWindows(CallRecord &record);
    ~FakeProgressWindows();
    FakeProgressWindows(const FakeProgressWindows &) = delete;
    FakeProgressWindows &operator=(const FakeProgressWindows &) = delete;

    HWND Bar() const { return m_bar; }
    HWND StatusText() const { return m_statusText; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnBar(UINT message, WPARAM wParam, LPARAM lParam);
    HWND Create();

    CallRecord &m_record;
    HWND m_bar;
    HWND m_statusText;
    int m_position = 0;
};
