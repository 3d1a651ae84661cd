#pragma once

#include <filesystem>

namespace OmbrelRecord {

/// What the desktop does with files for us. Main thread. Nothing here fails loudly: a desktop that offers
/// none of it leaves the user no worse off.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// Shows a file in the file manager.
    virtual void reveal(const std::filesystem::path& file) = 0;
    /// Puts a file on the clipboard, to be pasted into another program.
    virtual void copyFile(const std::filesystem::path& file) = 0;
    /// Throws RecordingError that names the file.
    virtual void trash(const std::filesystem::path& file) = 0;
};

/// The desktop of the session.
class SessionDesktop : public Desktop {
public:
    void reveal(const std::filesystem::path& file) override;
    void copyFile(const std::filesystem::path& file) override;
    void trash(const std::filesystem::path& file) override;
};

} // namespace OmbrelRecord
