#include "RecordCore/Capture/EncoderChoice.h"

#include "RecordCore/Capture/CapturePicture.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <mutex>
#include <thread>
#include <tuple>

namespace RecordCore {

namespace {

constexpr int trialFrames = 5;
// Frames before them that do not count: the first is a key frame of everything, and the encoder takes its
// memory, which the system clears, with the first few; at 3024 × 1964 that is a tenth of a second.
constexpr int warmUp = 3;
// What an encoder may take of the machine: the programs that are recorded need it, too.
constexpr double share = 0.5;
// HEVC in software took four times the work of H.264 or more wherever it was measured; where not even three
// times would do, a trial of it only costs the user time.
constexpr double leastHevcRatio = 3;

struct Candidate {
    Codec codec = Codec::h264;
    const char* preset = "";
    auto operator<=>(const Candidate&) const = default;
};
constexpr Candidate fastHevc{Codec::hevc, "ultrafast"};
constexpr Candidate usualH264{Codec::h264, "superfast"};
constexpr Candidate lastResort{Codec::h264, "ultrafast"};

VideoSettings settingsFor(int width, int height, int fps) {
    VideoSettings settings;
    settings.width = width;
    settings.height = height;
    settings.frameRate = fps;
    settings.timeBase = recordingTimeBase;
    settings.bitrate = recordingBitrate(width, height, fps);
    // Key frames are asked for by time; a count would put them into stills, where frames are rare.
    settings.keyInterval = 20 * fps;
    settings.realTime = true;
    return settings;
}

/// A busy screen: small text in half of the picture, which scrolls on from frame to frame, beside a still
/// picture with some grain.
void drawTrial(CapturePicture& picture, int step) {
    const PlanarView view = picture.view();
    for (int y = 0; y < view.height; ++y) {
        std::uint8_t* row = picture.plane(0) + y * picture.stride(0);
        const int line = y + 5 * step;
        for (int x = 0; x < view.width; ++x) {
            const auto place = static_cast<std::uint32_t>(line * 4099 + x);
            const std::uint32_t noise = (place * 2654435761U) >> 24;
            const bool ink = line % 16 < 11 && x % 8 < 7 && noise < 90;
            row[x] = static_cast<std::uint8_t>(x < view.width / 2 ? (ink ? 50 : 230)
                                                                  : 60 + (x + y) % 128 + noise % 4);
        }
    }
}

/// Seconds that all cores together have worked for this process. Other than the clock on the wall it does not
/// count what the rest of the machine does just now.
double processTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// The work of a frame, in seconds of one core; returns early when it is plain that it is too much.
double trial(const MediaBackend& media, VideoSettings settings, double budget) {
    const auto encoder = media.makeVideoEncoder(settings, [](const Packet&) {});
    std::vector<CapturePicture> pictures;
    for (int i = 0; i < 2; ++i) {
        pictures.emplace_back(settings.width, settings.height);
        drawTrial(pictures.back(), i);
    }
    const auto ticks = static_cast<std::int64_t>(90000 / settings.frameRate);
    double began = 0;
    for (int i = 0; i < warmUp + trialFrames; ++i) {
        if (i == warmUp) began = processTime();
        encoder->encode(pictures[static_cast<std::size_t>(i % 2)].view(), i * ticks);
        if (i >= warmUp && processTime() - began > 2 * budget * trialFrames)
            return (processTime() - began) / (i - warmUp + 1);
    }
    return (processTime() - began) / trialFrames;
}

/// Whether a hardware encoder not only opens but makes a packet of a picture: a driver may promise more than
/// it keeps, and in the middle of the recording it would be too late.
bool hardwareWorks(const MediaBackend& media, const VideoSettings& settings,
                   const std::function<void(const std::string&)>& log) {
    bool came = false;
    std::unique_ptr<VideoEncoder> encoder;
    try {
        encoder = media.makeVideoEncoder(settings, [&came](const Packet&) { came = true; });
    } catch (const RecordingError&) {
        return false; // the usual case: there is none
    }
    try {
        CapturePicture picture(settings.width, settings.height);
        drawTrial(picture, 0);
        encoder->encode(picture.view(), 0);
    } catch (const RecordingError& error) {
        log(fmt::format("record: {}", error.what()));
        return false;
    }
    if (!came) log(fmt::format("record: {} holds pictures back", encoder->name()));
    return came;
}

} // namespace

std::int64_t recordingBitrate(int width, int height, int fps) {
    const double wanted = static_cast<double>(width) * height * fps * 0.022;
    return std::max(static_cast<std::int64_t>(wanted), std::int64_t{6000000});
}

std::unique_ptr<VideoEncoder> chooseEncoder(const MediaBackend& media, int width, int height, int fps,
                                            PacketSink sink,
                                            const std::function<void(const std::string&)>& log) {
    VideoSettings settings = settingsFor(width, height, fps);
    const auto chosen = [&](std::unique_ptr<VideoEncoder> encoder, const std::string& why) {
        log(fmt::format("record: encoder {} for {} x {} at {} a second, {} bits per second ({})",
                        encoder->name(), width, height, fps, settings.bitrate, why));
        return encoder;
    };
    settings.codec = Codec::hevc;
    settings.hardware = true;
    if (hardwareWorks(media, settings, log)) {
        try {
            return chosen(media.makeVideoEncoder(settings, sink), "hardware");
        } catch (const RecordingError& error) {
            log(fmt::format("record: {}", error.what()));
        }
    }
    settings.hardware = false;

    const double budget = share * std::max(std::thread::hardware_concurrency(), 1U) / fps;
    const auto work = [&](const Candidate& candidate) {
        // By size and rate.
        static std::mutex mutex;
        static std::map<std::tuple<int, int, int, Candidate>, double> known;
        const std::lock_guard lock(mutex);
        const auto key = std::tuple(width, height, fps, candidate);
        if (const auto found = known.find(key); found != known.end()) return found->second;
        settings.codec = candidate.codec;
        settings.preset = candidate.preset;
        return known.emplace(key, trial(media, settings, budget)).first->second;
    };
    const auto use = [&](const Candidate& candidate, double time) {
        settings.codec = candidate.codec;
        settings.preset = candidate.preset;
        return chosen(media.makeVideoEncoder(settings, sink),
                      fmt::format("{:.1f} ms of work a frame", time * 1e3));
    };
    const double usual = work(usualH264);
    if (usual * leastHevcRatio <= budget) {
        try {
            const double time = work(fastHevc);
            if (time <= budget) return use(fastHevc, time);
            log(fmt::format("record: hevc would take {:.1f} ms of work a frame, too much", time * 1e3));
        } catch (const RecordingError& error) {
            log(fmt::format("record: {}", error.what())); // this build has none
        }
    }
    if (usual <= budget) return use(usualH264, usual);
    log(fmt::format("record: h264 {} would take {:.1f} ms of work a frame, too much", usualH264.preset,
                    usual * 1e3));
    settings.codec = lastResort.codec;
    settings.preset = lastResort.preset;
    return chosen(media.makeVideoEncoder(settings, sink), "the fastest there is");
}

} // namespace RecordCore
