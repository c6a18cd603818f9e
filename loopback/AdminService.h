// The administration interface for tests and experiments, under /_loopback/: account, tokens, faults,
// uploads and past requests. It takes form fields and answers in JSON, without OAuth.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/FaultQueue.h"
#include "loopback/HttpMessages.h"
#include "loopback/MakerEndpoint.h"
#include "loopback/PhotoIndex.h"
#include "loopback/RequestJournal.h"
#include "loopback/RequestTokenBook.h"
#include "loopback/UploadService.h"

#include <cstdint>
#include <functional>
#include <string>

namespace loopback
{

// What the administration interface shows and changes.
struct Administered
{
    AccountBook &accounts;
    RequestTokenBook &requests;
    MakerEndpoint &maker;
    PhotoIndex &photos;
    UploadService &uploads;
    FaultQueue &faults;
    RequestJournal &journal;
    std::function<std::uint64_t()> secureConnections;
    // Makes all request tokens and verifiers so many seconds older.
    std::function<void(std::int64_t)> advance;
};

class AdminService
{
public:
    explicit AdminService(Administered administered) : m_administered(std::move(administered)) {}

    // `path` is what follows "/_loopback/"; `fields` are those of the body.
    HttpReply Handle(const HttpRequest &request, const std::string &path, const FormFields &fields);

private:
    HttpReply Read(const std::string &path) const;
    HttpReply Change(const std::string &path, const FormFields &fields);

    Administered m_administered;
};

} // namespace loopback
