#include "Tests/Transcriber/TestMedia.h"

#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/X264/X264Encoder.h"

#include <algorithm>
#include <cmath>

using namespace RecordCore;

namespace {

class WatchedSound : public SoundReader {
public:
    WatchedSound(std::unique_ptr<SoundReader> reader, const std::function<void()>& onRead) :
        reader(std::move(reader)), onRead(onRead) {}
    std::int64_t end() const override { return reader->end(); }
    void read(std::int64_t position, std::span<float> out) override {
        if (onRead) onRead();
        reader->read(position, out);
    }

private:
    std::unique_ptr<SoundReader> reader;
    const std::function<void()>& onRead;
};

/// Writes half of what it is given and breaks.
class BreakingWriter : public MovieWriter {
public:
    BreakingWriter(std::unique_ptr<MovieWriter> writer, TestMedia::Fault fault) :
        writer(std::move(writer)), fault(fault) {}
    int addTrack(const StreamDescription& stream) override { return writer->addTrack(stream); }
    void begin() override { writer->begin(); }
    void write(int track, const Packet& packet) override {
        if (fault == TestMedia::Fault::packet && ++packets > 20) throw RecordingError("no space left");
        writer->write(track, packet);
    }
    void setEnd(int track, std::int64_t pts) override { writer->setEnd(track, pts); }
    void finish() override {
        if (fault == TestMedia::Fault::finish) throw RecordingError("no space left");
        writer->finish();
    }

private:
    std::unique_ptr<MovieWriter> writer;
    TestMedia::Fault fault;
    int packets = 0;
};

} // namespace

SourceInfo TestMedia::sourceInfo(const std::filesystem::path& file) const {
    if (fault == Fault::info) throw RecordingError("cannot be read");
    return FFmpeg::sourceInfo(file);
}

std::vector<std::unique_ptr<SoundReader>> TestMedia::openSound(const std::filesystem::path& file) const {
    auto tracks = FFmpeg::openSound(file);
    if (file.extension() == ".mp4")
        for (auto& track : tracks)
            track = std::make_unique<WatchedSound>(std::move(track), onRead);
    return tracks;
}

std::unique_ptr<SoundEncoder> TestMedia::makeSoundEncoder(std::int64_t bitrate, PacketSink sink) const {
    if (fault == Fault::encoder) throw RecordingError("there is no encoder");
    return FFmpeg::makeSoundEncoder(bitrate, std::move(sink));
}

std::unique_ptr<MovieWriter> TestMedia::createMovie(const std::filesystem::path& file,
                                                    MovieLayout layout) const {
    if (fault == Fault::writer) throw RecordingError("permission denied");
    return std::make_unique<BreakingWriter>(FFmpeg::createMovie(file, layout), fault);
}

void makeRecording(const std::filesystem::path& file, double seconds,
                   const std::optional<std::vector<float>>& sound) {
    VideoSettings settings;
    settings.width = 64;
    settings.height = 48;
    settings.bitrate = 100'000;
    settings.timeBase = {1, 1000};
    settings.threads = 1;
    const auto movie = FFmpeg::createMovie(file, MovieLayout::film);
    int picture = 0;
    int voice = 0;
    const auto video =
        X264::makeEncoder(settings, [&](const Packet& packet) { movie->write(picture, packet); });
    std::unique_ptr<SoundEncoder> encoder;
    if (sound)
        encoder =
            FFmpeg::makeSoundEncoder(192'000, [&](const Packet& packet) { movie->write(voice, packet); });
    picture = movie->addTrack(video->description());
    if (encoder) voice = movie->addTrack(encoder->description());
    movie->begin();

    const std::vector<std::uint8_t> grey(64 * 48 * 3 / 2, 128);
    const std::uint8_t* luma = grey.data();
    const PlanarView view{{luma, luma + 64 * 48, luma + 64 * 48 * 5 / 4}, {64, 32, 32}, 64, 48};
    const auto milliseconds = std::llround(seconds * 1000);
    video->encode(view, 0);
    video->repeat(view, milliseconds / 2);
    video->finish(milliseconds);
    movie->setEnd(picture, milliseconds);
    if (encoder) {
        std::vector<float> stereo;
        const auto length = static_cast<std::size_t>(std::llround(seconds * soundRate));
        for (std::size_t i = 0; i < length; ++i)
            stereo.insert(stereo.end(), 2, i < sound->size() ? (*sound)[i] : 0.0F);
        encoder->encode(stereo);
        encoder->finish();
    }
    movie->finish();
}
