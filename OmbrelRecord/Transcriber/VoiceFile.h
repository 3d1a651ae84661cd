#pragma once

#include <filesystem>
#include <string_view>

namespace OmbrelRecord {

/// The name of a temporary sound file, "ombrel-record-voice-" and a fresh identifier in the system's
/// temporary folder, whose file is removed when the object goes. The file itself is made by whoever writes
/// to it.
class VoiceFile {
public:
    /// `extension` with its dot: ".m4a".
    explicit VoiceFile(std::string_view extension);
    ~VoiceFile();
    VoiceFile(VoiceFile&& other) noexcept;
    VoiceFile& operator=(VoiceFile&& other) noexcept;

    const std::filesystem::path& path() const { return file; }

private:
    void remove() noexcept;

    std::filesystem::path file; ///< empty once moved from
};

} // namespace OmbrelRecord
