// Files of a folder of the test's own, collected as a user names them.
#pragma once

#include "host/PictureItems.h"

#include "tests/host/TemporaryFolder.h"

#include <gtest/gtest.h>

// Items as "stem[ext;ext]", stems relative to the folder.
inline std::vector<std::string> Told(const ItemCollection &collection, const std::filesystem::path &folder)
{
    std::vector<std::string> told;
    for (const PictureItem &item : collection.items)
    {
        std::string extensions;
        for (const std::string &extension : item.extensions)
        {
            extensions += (extensions.empty() ? "" : ";") + extension;
        }
        told.push_back(item.stem.lexically_relative(folder).generic_string() + "[" + extensions + "]");
    }
    return told;
}

class PictureItems : public testing::Test
{
protected:
    ItemCollection Collect(std::vector<std::filesystem::path> names, bool recursive = false)
    {
        for (std::filesystem::path &name : names)
        {
            name = m_folder.Path() / name;
        }
        return CollectItems(names, recursive, [this] { ++m_looks; });
    }

    std::string ReasonFor(const std::filesystem::path &name)
    {
        const ItemCollection collection = Collect({name});
        EXPECT_TRUE(collection.items.empty());
        return collection.refused.size() == 1 ? collection.refused[0].reason : "(not refused once)";
    }

    TemporaryFolder m_folder;
    int m_looks = 0; // at files
};
