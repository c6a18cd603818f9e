// The administration interface for tests and experiments, under /_loopback/: account, tokens, faults,
// uploads and past requests. It takes form fields and answers in JSON, without OAuth.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/FaultQueue.h"
#include "loopback/HttpMessages.h"
#include "loopback/HttpServer.h"
#include "loopback/MakerEndpoint.h"
#include "loopback/PhotoIndex.h"
#include "loopback/RequestJournal.h"
#include "loopback/RequestTokenBook.h"
#include "loopback/UploadService.h"

#include <functional>
#include <string>

namespace loopback
{

class AdminService
{
public:
    using CountConnections = std::function<ConnectionCounts()>;

    AdminService(AccountBook &accounts, RequestTokenBook &requests, MakerEndpoint &maker, PhotoIndex &photos,
                 UploadService &uploads, FaultQueue &faults, RequestJournal &journal, CountConnections counts);

    // `path` is what follows "/_loopback/".
    HttpReply Handle(HttpExchange &exchange, const std::string &path);

private:
    HttpReply Read(const std::string &path) const;
    HttpReply Change(const std::string &path, const FormFields &fields);

    AccountBook &m_accounts;
    RequestTokenBook &m_requests;
    MakerEndpoint &m_maker;
    PhotoIndex &m_photos;
    UploadService &m_uploads;
    FaultQueue &m_faults;
    RequestJournal &m_journal;
    CountConnections m_counts;
};

} // namespace loopback
