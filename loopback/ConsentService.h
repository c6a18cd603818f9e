// /services/oauth/authorize: asks the user in the browser, records the answer and redirects the browser to
// the callback. After a refusal it doesn't; the application notices when its token is rejected. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/ConsentPage.h"
#include "loopback/FormFields.h"
#include "loopback/HttpMessages.h"
#include "loopback/RequestTokenBook.h"

#include <string>

namespace loopback
{

class ConsentService
{
public:
    ConsentService(const AccountBook &accounts, RequestTokenBook &requests);

    HttpReply Handle(HttpExchange &exchange);

private:
    HttpReply Ask(const HttpRequest &request, const FormFields &fields, const std::string &notice,
                  bool isUserUnknown);
    HttpReply Answer(const HttpRequest &request, const FormFields &fields);
    HttpReply Granted(const RequestToken &token) const;
    std::string FormKey(const std::string &visitor, const FormFields &fields) const;
    std::string ApplicationName(const RequestToken &token) const;

    const AccountBook &m_accounts;
    RequestTokenBook &m_requests;
    // Random key of this run of the service. It signs the forms, so nobody else can make a valid one.
    std::string m_key;
};

} // namespace loopback
