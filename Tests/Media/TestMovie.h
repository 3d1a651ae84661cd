#pragma once

#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/X264/X264Encoder.h"
#include "RecordCore/Model/RecordingError.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Small movies that the tests of encoders and writers make.
namespace TestMovie {

using namespace RecordCore;

inline constexpr int width = 160;
inline constexpr int height = 96;

/// A grey picture with a bright bar whose place tells the number.
class Drawing {
public:
    Drawing() : bytes(static_cast<std::size_t>(width * height * 3 / 2), 128) {}

    PlanarView frame(int number) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                bytes[static_cast<std::size_t>(y * width + x)] =
                    static_cast<std::uint8_t>((x + y + number * 3) % 96 < 16 ? 220 : 60 + (x ^ y) % 32);
        return view();
    }
    PlanarView flat(int luma) {
        std::fill(bytes.begin(), bytes.begin() + width * height, static_cast<std::uint8_t>(luma));
        return view();
    }
    PlanarView view() const {
        const std::uint8_t* data = bytes.data();
        return {{data, data + width * height, data + width * height * 5 / 4},
                {width, width / 2, width / 2},
                width,
                height};
    }

private:
    std::vector<std::uint8_t> bytes;
};

inline VideoSettings settings(bool realTime) {
    VideoSettings result;
    result.width = width;
    result.height = height;
    result.bitrate = 400'000;
    result.realTime = realTime;
    result.threads = 2;
    if (realTime) result.timeBase = {1, 1'000'000};
    return result;
}

/// Encoders and a writer joined, as a recorder or an exporter joins them.
class Movie {
public:
    Movie(const std::filesystem::path& file, MovieLayout layout, const VideoSettings& wanted,
          bool withSound) :
        writer(FFmpeg::createMovie(file, layout)),
        video(makeEncoder(wanted, [this](const Packet& packet) {
            ++packets;
            writer->write(videoTrack, packet);
        })) {
        videoTrack = writer->addTrack(video->description());
        if (withSound) {
            sound = FFmpeg::makeSoundEncoder(
                192'000, [this](const Packet& packet) { writer->write(soundTrack, packet); });
            soundTrack = writer->addTrack(sound->description());
        }
        writer->begin();
    }

    std::unique_ptr<MovieWriter> writer;
    std::unique_ptr<VideoEncoder> video;
    std::unique_ptr<SoundEncoder> sound;
    int videoTrack = 0;
    int soundTrack = 0;
    int packets = 0;

private:
    static std::unique_ptr<VideoEncoder> makeEncoder(const VideoSettings& wanted, PacketSink sink) {
        if (wanted.codec == Codec::h264) return X264::makeEncoder(wanted, std::move(sink));
        return FFmpeg::makeVideoEncoder(wanted, std::move(sink));
    }
};

inline std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RecordingError& error) {
        return error.what();
    }
    return "(no error)";
}

} // namespace TestMovie
