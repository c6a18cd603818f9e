// /services/oauth/authorize: asks the user in the browser, takes the answer and sends the browser
// on. After a refusal the callback is not called; the application learns of it when its token is
// rejected. Thread-safe.
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
    // Of this run of the service: what it puts into forms, nobody else can make.
    std::string m_key;
};

} // namespace loopback
