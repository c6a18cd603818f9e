// The journal's file: a database of one table, which mends itself. Thread-safe.
#pragma once

#include "host/Profile.h"

#include "database/Database.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

class JournalFile
{
public:
    // Opens or makes it. A damaged file is set aside, here or when the damage is met, what can still be read of it goes
    // into a new one, and a notice says so. Throws ProfileError, as Run does.
    explicit JournalFile(const Profile &profile);

    // As Database::Run.
    std::vector<Database::Row> Run(const std::string &sql, const std::vector<Database::Value> &values = {});

    // Those that weren't taken before.
    std::vector<std::string> TakeNotices();

private:
    void Open();
    bool IsMended();
    void SetAside(const std::string &words);

    const Profile m_profile;
    std::mutex m_lock;
    std::unique_ptr<Database> m_database;
    std::vector<std::string> m_notices;
};
