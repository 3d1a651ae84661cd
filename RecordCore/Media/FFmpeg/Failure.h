#pragma once

#include <filesystem>
#include <string>

namespace RecordCore::FFmpeg {

/// The words for a libav error code ("No space left on device").
std::string errorText(int code);

/// Throws RecordingError "file: what" or "file: what: cause".
[[noreturn]] void fail(const std::filesystem::path& file, const std::string& what);
[[noreturn]] void fail(const std::filesystem::path& file, const std::string& what, int code);

/// Keeps libav from writing to standard error; our errors say what matters. Called by everything that
/// opens a libav object; cheap, callable from any thread.
void silenceLog();

} // namespace RecordCore::FFmpeg
