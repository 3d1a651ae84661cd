#include "RecordCore/Model/ActivitySample.h"

#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Json.h"

namespace RecordCore {

std::vector<ActivitySample> loadActivity(const std::filesystem::path& file) {
    const std::string text = readFile(file);
    try {
        std::vector<ActivitySample> samples;
        if (!parseJson(text, {{"", appendTo(samples)}}).is_array()) throw RecordingError("is not a list");
        return samples;
    } catch (const RecordingError& error) {
        throw RecordingError(fmt::format("{}: {}", file.string(), error.what()));
    }
}

void saveActivity(const std::vector<ActivitySample>& samples, const std::filesystem::path& file) {
    writeFileAtomically(file, finiteListText(samples, file));
}

} // namespace RecordCore
