#pragma once

#include "Tests/Support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

/// While it lives, the system's temporary folder is one of our own, so that it can be seen what is left in
/// it.
class TemporaryPlace {
public:
    TemporaryPlace() {
        if (const char* variable = std::getenv("TMPDIR")) before = variable;
        setenv("TMPDIR", folder.path().c_str(), 1);
    }
    ~TemporaryPlace() {
        if (before)
            setenv("TMPDIR", before->c_str(), 1);
        else
            unsetenv("TMPDIR");
    }
    TemporaryPlace(const TemporaryPlace&) = delete;
    TemporaryPlace& operator=(const TemporaryPlace&) = delete;

    bool empty() const { return std::filesystem::is_empty(folder.path()); }

private:
    TemporaryFolder folder;
    std::optional<std::string> before;
};
