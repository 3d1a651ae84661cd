#pragma once

#include <filesystem>

/// A fresh folder that is removed with everything in it when the object goes.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return folder; }
    std::filesystem::path operator/(const char* name) const { return folder / name; }

private:
    std::filesystem::path folder;
};
