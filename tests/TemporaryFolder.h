// A folder for a test's files.
#pragma once

#include <filesystem>
#include <random>
#include <string>

/// A new folder, of a name that no other has, which goes with this object.
struct TemporaryFolder {
    std::filesystem::path Path;

    TemporaryFolder()
    {
        std::random_device random;
        do {
            Path = std::filesystem::temp_directory_path() / ("acg" + std::to_string(random()));
        } while (!std::filesystem::create_directory(Path));
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(Path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
};
