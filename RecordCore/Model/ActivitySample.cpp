#include "RecordCore/Model/ActivitySample.h"

#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Json.h"

namespace RecordCore {

std::vector<ActivitySample> loadActivity(const std::filesystem::path& file) {
    const std::string text = readFile(file);
    try {
        std::vector<ActivitySample> samples;
        JsonReading::decode(parseJson(text), samples);
        return samples;
    } catch (const RecordingError& error) {
        throw RecordingError(fmt::format("{}: {}", file.string(), error.what()));
    }
}

void saveActivity(const std::vector<ActivitySample>& samples, const std::filesystem::path& file) {
    saveJson(JsonWriting::encode(samples), file);
}

} // namespace RecordCore
