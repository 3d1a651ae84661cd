#pragma once

#include "OmbrelRecord/AppModel/Recording.h"

#include <chrono>
#include <filesystem>
#include <vector>

namespace OmbrelRecord {

/// Where recordings live: one folder each in a common root. Callable from any thread; stateless but for the
/// root's path.
class Library {
public:
    /// The root is made when it is first needed.
    explicit Library(std::filesystem::path root = standardRoot());

    /// "Ombrel Record" in the user's videos folder.
    static std::filesystem::path standardRoot();

    const std::filesystem::path& root() const { return top; }

    /// Where films are exported to: a folder of their own, so that throwing a recording away keeps its films.
    std::filesystem::path films() const { return top / "Films"; }

    /// Makes the folder of a recording that starts now, named by the local time ("Recording 2026-11-14 at
    /// 18.02.19") and open to its owner only. Throws RecordingError, also when there is one of that name: a
    /// recording is never written over another.
    std::filesystem::path newFolder() const;
    std::filesystem::path newFolder(std::chrono::system_clock::time_point now) const;

    /// The folders that hold a recording, newest first; those whose date is not known come last, by name with
    /// the latest first.
    std::vector<Recording> recordings() const;

    /// The recordings that were begun and never finished, which their journal tells: cut off by a crash, or
    /// still running (`recoverRecording` refuses those).
    std::vector<Recording> unfinished() const;

private:
    std::filesystem::path top;
};

/// Moves a file or folder to the user's trash. Throws RecordingError that names it.
void moveToTrash(const std::filesystem::path& file);

} // namespace OmbrelRecord
