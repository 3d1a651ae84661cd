#include "OmbrelRecord/Transcriber/VoiceFile.h"

#include "RecordCore/Model/Uuid.h"

#include <fmt/format.h>

#include <system_error>
#include <utility>

namespace OmbrelRecord {

VoiceFile::VoiceFile(std::string_view extension) :
    file(std::filesystem::temp_directory_path() /
         fmt::format("ombrel-record-voice-{}{}", RecordCore::Uuid::fresh().text(), extension)) {}

VoiceFile::~VoiceFile() {
    remove();
}

VoiceFile::VoiceFile(VoiceFile&& other) noexcept : file(std::move(other.file)) {
    other.file.clear();
}

VoiceFile& VoiceFile::operator=(VoiceFile&& other) noexcept {
    if (this != &other) {
        remove();
        file = std::move(other.file);
        other.file.clear();
    }
    return *this;
}

void VoiceFile::remove() noexcept {
    std::error_code ignored;
    if (!file.empty()) std::filesystem::remove(file, ignored);
}

} // namespace OmbrelRecord
