// /services/oauth/authorize: asks the user in the browser, records the answer and redirects the browser to
// the callback. After a refusal it doesn't; the application notices when its token is rejected. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/FormFields.h"
#include "loopback/HttpMessages.h"
#include "loopback/RequestTokenBook.h"

namespace loopback
{

class ConsentService
{
public:
    ConsentService(const AccountBook &accounts, RequestTokenBook &requests)
        : m_accounts(accounts), m_requests(requests)
    {
    }

    // `fields` are those of the body.
    HttpReply Handle(const HttpRequest &request, const FormFields &fields);

private:
    HttpReply Ask(const FormFields &fields, bool isUserUnknown) const;
    HttpReply Answer(const FormFields &fields);

    const AccountBook &m_accounts;
    RequestTokenBook &m_requests;
};

} // namespace loopback
