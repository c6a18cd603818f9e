// A profile in a folder of the test's own.
#pragma once

#include "host/Profile.h"

#include "tests/host/TemporaryFolder.h"

#include "host/InitData.h"

#include <gtest/gtest.h>

inline std::string AccountOf(const WCHAR *token)
{
    AccountData account;
    account.token = token;
    account.tokenSecret = token;
    return ComposeInitData(account);
}

class ProfileTest : public testing::Test
{
protected:
    // The content of the account file.
    std::string Kept() const
    {
        return ParseInitDataFile(m_folder.Read("profile/init-data.bin")).value_or("(damaged)");
    }

    TemporaryFolder m_folder;
    Profile m_profile{m_folder.Path() / "profile"};
    InitDataStore m_store{m_profile};
};
