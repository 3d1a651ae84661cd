#include "OmbrelRecord/EditorModel/Waveform.h"

#include "OmbrelRecord/AppModel/FileKey.h"
#include "RecordCore/Model/AtomicFile.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

constexpr std::size_t grain = 64;
/// Handed over in pieces of this length: a line that grows visibly, yet not a signal for every packet.
constexpr int pieceSeconds = 20;

// A kept file is the peaks behind these bytes.
constexpr std::string_view mark = "ombrel peaks 1\n";

std::optional<std::vector<std::uint8_t>> kept(const std::filesystem::path& file, std::size_t count) {
    std::error_code missing;
    if (file.empty() || !std::filesystem::is_regular_file(file, missing)) return std::nullopt;
    try {
        const std::string bytes = readFile(file);
        if (bytes.size() != mark.size() + count || bytes.compare(0, mark.size(), mark) != 0)
            return std::nullopt;
        return std::vector<std::uint8_t>(bytes.begin() + static_cast<std::ptrdiff_t>(mark.size()),
                                         bytes.end());
    } catch (const std::exception&) {
        return std::nullopt; // it is made anew
    }
}

void keep(const std::filesystem::path& file, const std::string& peaks) {
    if (file.empty() || peaks.empty()) return;
    try {
        std::filesystem::create_directories(file.parent_path());
        writeFileAtomically(file, std::string(mark) + peaks);
    } catch (const std::exception&) {
        // Next time it is read from the sound again.
    }
}

} // namespace

/// The thread that reads. Knows nothing of the waveform, which may be gone before its end.
class Waveform::Reading {
public:
    using Hand = std::function<void(std::vector<std::uint8_t> more, bool last)>; ///< on the thread

    Reading(const MediaBackend& media, const std::filesystem::path& video, double duration,
            const std::filesystem::path& cache, Hand hand) :
        thread([this, &media, video, duration, cache, hand = std::move(hand)] {
            read(media, video, duration, cache, hand);
        }) {}
    ~Reading() {
        end();
        thread.join();
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    void end() { ending = true; }

private:
    void read(const MediaBackend& media, const std::filesystem::path& video, double duration,
              const std::filesystem::path& cache, const Hand& hand) const;

    std::atomic<bool> ending{false};
    std::thread thread;
};

void Waveform::Reading::read(const MediaBackend& media, const std::filesystem::path& video, double duration,
                             const std::filesystem::path& cache, const Hand& hand) const {
    const auto total = static_cast<std::int64_t>(std::ceil(std::max(duration, 0.0) * perSecond));
    const std::filesystem::path file =
        cache.empty() ? cache : cache / (fileKey(video).toStdString() + ".peaks");
    if (auto known = kept(file, static_cast<std::size_t>(total))) return hand(std::move(*known), true);
    try {
        const auto tracks = media.openSound(video);
        std::string all;
        constexpr std::int64_t samples = soundRate / perSecond;
        std::vector<float> sound(static_cast<std::size_t>(samples * perSecond * soundChannels));
        std::vector<std::uint8_t> piece;
        for (std::int64_t done = 0; done < total && !tracks.empty(); done += perSecond) {
            if (ending) return;
            std::vector<std::uint8_t> second(
                static_cast<std::size_t>(std::min<std::int64_t>(perSecond, total - done)));
            for (const auto& track : tracks) {
                track->read(done * samples, sound);
                for (std::size_t i = 0; i < second.size(); ++i) {
                    float loudest = 0;
                    const std::size_t from = i * samples * soundChannels;
                    for (std::size_t j = from; j < from + samples * soundChannels; ++j)
                        loudest = std::max(loudest, std::abs(sound[j]));
                    const auto byte = static_cast<std::uint8_t>(std::lround(std::min(loudest, 1.0F) * 255));
                    second[i] = std::max(second[i], byte);
                }
            }
            piece.insert(piece.end(), second.begin(), second.end());
            all.append(second.begin(), second.end());
            if (piece.size() < static_cast<std::size_t>(pieceSeconds * perSecond)) continue;
            hand(std::move(piece), false);
            piece.clear();
        }
        hand(std::move(piece), true);
        keep(file, all);
    } catch (const std::exception&) {
        hand({}, true); // sound that cannot be read shows as silence
    }
}

Waveform::Waveform(const MediaBackend& media, const std::filesystem::path& video, double duration,
                   const std::filesystem::path& cache, Disposal* disposal, QObject* parent) :
    QObject(parent),
    reading(
        std::make_shared<Reading>(media, video, duration, cache,
                                  [this, to = mailbox.address()](std::vector<std::uint8_t> more, bool last) {
                                      to.post([this, more = std::move(more), last] { add(more, last); });
                                  })),
    disposal(disposal) {}

Waveform::~Waveform() {
    reading->end();
    Disposal::drop(disposal, std::move(reading));
}

void Waveform::add(const std::vector<std::uint8_t>& more, bool last) {
    peaks.insert(peaks.end(), more.begin(), more.end());
    finished = last;
    for (const std::uint8_t peak : more)
        loudest = std::max(loudest, peak);
    for (std::size_t i = coarse.size() * grain; i < peaks.size(); i += grain) {
        // The last one may still grow.
        if (i + grain > peaks.size() && !last) break;
        coarse.push_back(*std::max_element(
            peaks.begin() + static_cast<std::ptrdiff_t>(i),
            peaks.begin() + static_cast<std::ptrdiff_t>(std::min(i + grain, peaks.size()))));
    }
    Q_EMIT changed();
}

double Waveform::peak(double from, double to) const {
    if (peaks.empty() || !(to >= 0)) return 0;
    const auto size = static_cast<double>(peaks.size());
    const auto first = static_cast<std::size_t>(std::clamp(std::floor(from * perSecond), 0.0, size));
    const auto last = static_cast<std::size_t>(
        std::clamp(std::max(std::ceil(to * perSecond), std::floor(from * perSecond) + 1), 0.0, size));
    std::uint8_t highest = 0;
    for (std::size_t i = first; i < last;) {
        const bool whole = i % grain == 0 && i + grain <= last && i / grain < coarse.size();
        highest = std::max(highest, whole ? coarse[i / grain] : peaks[i]);
        i += whole ? grain : 1;
    }
    return highest / 255.0;
}

} // namespace OmbrelRecord
