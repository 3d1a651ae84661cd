#include "RecordCore/Capture/EncoderChoice.h"

#include "RecordCore/Capture/CapturePicture.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <tuple>

namespace RecordCore {

namespace {

constexpr int trialFrames = 8;
// What a preset may take of a frame's time in a trial: the programs that are recorded need the machine, too.
constexpr double share = 0.6;

struct Candidate {
    Codec codec = Codec::h264;
    const char* preset = "";
    auto operator<=>(const Candidate&) const = default;
};
constexpr Candidate candidates[] = {{Codec::hevc, "ultrafast"}, {Codec::h264, "superfast"}};
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

/// A picture as busy as a screen gets: text-like noise in half of the blocks, moved on from frame to frame.
void drawTrial(CapturePicture& picture, int step) {
    for (int plane = 0; plane < 3; ++plane) {
        const PlanarView view = picture.view();
        for (int y = 0; y < view.planeHeight(plane); ++y) {
            std::uint8_t* row = picture.plane(plane) + y * picture.stride(plane);
            for (int x = 0; x < view.planeWidth(plane); ++x) {
                const auto place = static_cast<std::uint32_t>((y + 3 * step) * 4099 + x);
                const std::uint32_t noise = (place * 2654435761U) >> 24;
                const bool busy = ((x / 64 + y / 64) & 1) == 0;
                row[x] = static_cast<std::uint8_t>(busy ? 16 + noise % 200 : 200);
            }
        }
    }
}

/// The average time of a frame, as soon as it is plain that it is too long.
double trial(const MediaBackend& media, const HostClock& clock, VideoSettings settings, double budget) {
    const auto encoder = media.makeVideoEncoder(settings, [](const Packet&) {});
    std::vector<CapturePicture> pictures;
    for (int i = 0; i < 2; ++i) {
        pictures.emplace_back(settings.width, settings.height);
        drawTrial(pictures.back(), i);
    }
    const auto ticks = static_cast<std::int64_t>(90000 / settings.frameRate);
    const double began = clock.now();
    for (int i = 0; i < trialFrames; ++i) {
        encoder->encode(pictures[static_cast<std::size_t>(i % 2)].view(), i * ticks);
        const double spent = clock.now() - began;
        if (spent > budget * trialFrames) return spent / (i + 1);
    }
    encoder->finish(trialFrames * ticks);
    return (clock.now() - began) / trialFrames;
}

} // namespace

std::int64_t recordingBitrate(int width, int height, int fps) {
    const double wanted = static_cast<double>(width) * height * fps * 0.022;
    return std::max(static_cast<std::int64_t>(wanted), std::int64_t{6000000});
}

std::unique_ptr<VideoEncoder> chooseEncoder(const MediaBackend& media, const HostClock& clock, int width,
                                            int height, int fps, PacketSink sink,
                                            const std::function<void(const std::string&)>& log) {
    VideoSettings settings = settingsFor(width, height, fps);
    const auto chosen = [&](std::unique_ptr<VideoEncoder> encoder, const std::string& why) {
        log(fmt::format("record: encoder {} for {} x {} at {} a second, {} bits per second ({})",
                        encoder->name(), width, height, fps, settings.bitrate, why));
        return encoder;
    };
    settings.codec = Codec::hevc;
    settings.hardware = true;
    try {
        return chosen(media.makeVideoEncoder(settings, sink), "hardware");
    } catch (const RecordingError&) {
        settings.hardware = false; // the usual case: there is none
    }

    // By size and rate: the candidate and the time it took for a frame.
    static std::mutex mutex;
    static std::map<std::tuple<int, int, int, Candidate>, double> known;
    const double budget = share / fps;
    for (const Candidate& candidate : candidates) {
        settings.codec = candidate.codec;
        settings.preset = candidate.preset;
        try {
            const std::lock_guard lock(mutex);
            const auto key = std::tuple(width, height, fps, candidate);
            auto found = known.find(key);
            if (found == known.end()) found = known.emplace(key, trial(media, clock, settings, budget)).first;
            const double time = found->second;
            if (time > budget) {
                log(fmt::format("record: {} {} would take {:.1f} ms a frame, too long",
                                candidate.codec == Codec::hevc ? "hevc" : "h264", candidate.preset,
                                time * 1e3));
                continue;
            }
            return chosen(media.makeVideoEncoder(settings, sink),
                          fmt::format("{:.1f} ms a frame", time * 1e3));
        } catch (const RecordingError& error) {
            log(fmt::format("record: {}", error.what()));
        }
    }
    settings.codec = lastResort.codec;
    settings.preset = lastResort.preset;
    return chosen(media.makeVideoEncoder(settings, sink), "the fastest there is");
}

} // namespace RecordCore
