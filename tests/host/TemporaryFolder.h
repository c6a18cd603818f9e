// A folder of its own for one test, gone with it.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::random_device number;
        do
        {
            m_path = std::filesystem::temp_directory_path() / ("halvora-test-" + std::to_string(number()));
        } while (!std::filesystem::create_directory(m_path));
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const std::filesystem::path &Path() const { return m_path; }

    // Makes the file, and the folders above it.
    std::filesystem::path Write(const std::filesystem::path &name, std::string_view content) const
    {
        std::filesystem::path file = m_path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

    std::string Read(const std::filesystem::path &name) const
    {
        std::ifstream file(m_path / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

private:
    std::filesystem::path m_path;
};
