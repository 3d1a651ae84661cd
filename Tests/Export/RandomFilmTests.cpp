#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Rendering/Fonts.h"
#include "RecordCore/Rendering/Wallpapers.h"
#include "Tests/Rendering/SamplePictures.h"
#include "Tests/Support/RealMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>

// Whole films of random projects, from planning to the encoder's door: whatever the export hands on (frames
// of which some blocks were redrawn, or the word that nothing changed) must be the picture that drawing
// everything gives.

using namespace RecordCore;
using SamplePictures::Random;

namespace {

constexpr double filmRate = 30;
constexpr double filmScale = 0.16;

/// The frames of a video that is never written to a file.
struct Reel {
    struct Frame {
        double time;
        std::shared_ptr<const Picture> picture;
    };
    std::vector<Frame> frames;
    SourceInfo info;
};

class ReelReader : public VideoReader {
public:
    explicit ReelReader(std::shared_ptr<const Reel> reel) : reel(std::move(reel)) {}
    const SourceInfo& info() const override { return reel->info; }
    std::optional<VideoFrame> next() override {
        if (index >= reel->frames.size()) return std::nullopt;
        const Reel::Frame& frame = reel->frames[index++];
        return VideoFrame{frame.time, frame.picture->view(), frame.picture};
    }
    void seek(double seconds) override {
        index = 0;
        while (index + 1 < reel->frames.size() && reel->frames[index + 1].time <= seconds + 1e-6)
            ++index;
    }

private:
    std::shared_ptr<const Reel> reel;
    std::size_t index = 0;
};

/// A screen on which little changes at a time, at uneven times, with stills in between and frames that equal
/// the one before.
std::shared_ptr<const Reel> randomReel(Random& random, int width, int height, double duration) {
    const auto reel = std::make_shared<Reel>();
    auto picture = std::make_shared<const Picture>(SamplePictures::screen(width, height, random.next()));
    for (double time = 0; time < duration;) {
        if (random.below(3) > 0) {
            auto changed = std::make_shared<Picture>(*picture);
            const bool much = random.below(12) == 0;
            for (int i = 1 + random.below(3); i > 0; --i)
                SamplePictures::scribble(*changed, random.below(width), random.below(height),
                                         1 + random.below(much ? width : 30),
                                         1 + random.below(much ? height : 12), random.next());
            picture = std::move(changed);
        }
        reel->frames.push_back({time, picture});
        time += random.below(14) == 0 ? random.between(0.3, 2.5) : random.between(1, 4) / 60;
    }
    reel->info = {width, height, duration, static_cast<double>(reel->frames.size()) / duration, false};
    return reel;
}

InputLog randomLog(Random& random, double duration) {
    InputLog log;
    log.cursorInVideo = false;
    double x = random.unit();
    double y = random.unit();
    double restUntil = 0;
    for (double t = 0; t < duration; t += 1.0 / 60) {
        if (t >= restUntil) {
            x += random.between(-0.03, 0.03);
            y += random.between(-0.03, 0.03);
            if (random.below(40) == 0) restUntil = t + random.between(0.2, 2);
        }
        log.cursor.push_back({t, x, y});
        if (random.below(60) == 0) {
            constexpr InputLog::Event::Kind kinds[] = {
                InputLog::Event::Kind::click, InputLog::Event::Kind::click, InputLog::Event::Kind::rightClick,
                InputLog::Event::Kind::scroll, InputLog::Event::Kind::key};
            const auto kind = kinds[random.below(5)];
            if (kind == InputLog::Event::Kind::key)
                log.events.push_back({t, kind, std::nullopt, std::nullopt});
            else
                log.events.push_back({t, kind, x, y});
        }
    }
    return log;
}

std::vector<ActivitySample> randomActivity(Random& random, double duration) {
    std::vector<ActivitySample> samples;
    bool busy = true;
    for (double t = 0; t < duration; t += 1.0 / 15) {
        if (random.below(25) == 0) busy = !busy;
        ActivitySample sample{t, busy ? random.unit() * 0.2 : 0, std::nullopt};
        if (busy) sample.focus = NRect::centered(random.unit(), random.unit(), 0.2, 0.2).clampedToUnit();
        samples.push_back(sample);
    }
    return samples;
}

template <std::size_t size>
std::string oneOf(Random& random, const char* const (&names)[size]) {
    return names[random.below(static_cast<int>(size))];
}

Project randomProject(Random& random, OutputFormat format, double duration) {
    const auto chance = [&random](int of) { return random.below(of) == 0; };
    Project project;
    project.format = std::string(rawValue(format));
    const auto wallpapers = Wallpapers::all();
    project.wallpaperPreset =
        chance(3) ? "" : std::string(wallpapers[random.next() % wallpapers.size()].name);
    if (chance(4)) project.solidColor = "#d8dce4";
    project.backdrop = std::string(Backdrop::names()[random.next() % Backdrop::names().size()]);
    project.backgroundBlur = random.unit();
    project.padding = chance(3) ? 0 : random.between(0, 0.08);
    project.radius = random.unit();
    project.shadow = random.unit();
    project.cursorSize = random.between(1, 3);
    project.cursorSmooth = !chance(3);
    project.hideIdleCursor = !chance(3);
    project.cursorStyle = oneOf(random, {"arrow", "light", "outline", "dot"});
    project.clickEffect = oneOf(random, {"ripple", "ring", "spotlight", "none"});
    project.clickBounce = random.unit();
    project.cameraSize = random.between(0.15, 0.4);
    project.cameraCorner = oneOf(random, {"br", "bl", "tr", "tl", "mc"});
    project.cameraMirror = chance(2);
    project.cameraShape = oneOf(random, {"circle", "rounded", "square"});
    project.cameraBorder = chance(2);
    project.cameraMakeRoom = chance(2);
    project.showTitle = chance(2);
    project.title = "A film";
    project.subtitle = "of something";
    project.showEnd = chance(2);
    project.endTitle = "That was it";
    project.showClock = chance(2);
    project.motion = oneOf(random, {"focused", "smooth"});
    if (chance(3)) project.crop = NRect{random.unit() * 0.3, random.unit() * 0.3, 0.65, 0.6};
    project.trimStart = chance(3) ? random.unit() : 0;
    if (chance(3)) project.trimEnd = duration - random.unit();
    if (chance(2)) project.cuts.push_back({duration * 0.4, duration * random.between(0.45, 0.6)});
    if (chance(3)) {
        project.speedBlocks.emplace();
        project.speedBlocks->push_back(
            SpeedBlock::make(duration * 0.2, duration * 0.5, random.between(1.2, 9),
                             chance(2) ? SpeedSegment::Reason::manual : SpeedSegment::Reason::idle));
    }
    if (!chance(3)) {
        project.zoomBlocks.emplace();
        for (double t = random.unit(); t + 1 < duration; t += random.between(1, 3))
            project.zoomBlocks->push_back(ZoomBlock::make(t, t + random.between(0.4, 1), random.unit(),
                                                          random.unit(), random.between(1.1, 2.5)));
    }
    project.showCaptions = !chance(3);
    project.captionStyle = oneOf(random, {"highlight", "clean", "boxed", "bold"});
    project.captionSize = random.between(0.03, 0.09);
    project.captions.emplace();
    for (double t = random.unit(); t < duration; t += random.between(0.2, 0.9))
        project.captions->push_back({oneOf(random, {"here", "something", "is", "said,", "then", "no."}), t,
                                     t + random.between(0.1, 0.4)});
    return project;
}

struct RandomFilm {
    RandomFilm(std::uint32_t seed, OutputFormat format) {
        Random random(seed);
        const double duration = random.between(5, 8);
        screen = randomReel(random, 200 + random.below(200), 150 + random.below(150), duration);
        if (random.below(3) > 0)
            camera = randomReel(random, 64 + random.below(40), 48 + random.below(40), duration - 1);
        recording.info = screen->info;
        recording.samples = randomActivity(random, duration);
        recording.log = randomLog(random, duration);
        recording.log->cameraOffset = random.between(-0.2, 0.5);
        recording.project = randomProject(random, format, duration);
        plan = recording.plan();
        options.project = recording.project;
        options.log = recording.log;
        options.fps = filmRate;
        options.scale = filmScale;
        options.watermark = random.below(4) == 0;
        if (camera) options.camera = "camera.mp4";
    }
    std::shared_ptr<const Reel> screen;
    std::shared_ptr<const Reel> camera;
    LoadedRecording recording;
    Plan plan;
    ExportOptions options;
};

/// The same film with every frame drawn from nothing.
class Recomposition {
public:
    explicit Recomposition(const RandomFilm& film) :
        scene(film.plan, film.options.project, film.options.log, filmRate),
        source(std::make_unique<ReelReader>(film.screen)) {
        if (film.camera && film.options.project.cameraShow)
            camera.emplace(std::make_unique<ReelReader>(film.camera), film.plan,
                           *film.options.log->cameraOffset);
        compositor = std::make_shared<const Compositor>(
            Exporter::compositorSettings(film.plan, film.options.project, film.screen->info, filmScale,
                                         film.options.watermark, camera.has_value(), {}));
    }

    Picture frame(std::int64_t number) {
        const double seconds = static_cast<double>(number) / filmRate;
        const FrameState state = scene.drawn(seconds);
        note(state, seconds);
        const PlanarView* cameraPicture = camera ? camera->at(seconds) : nullptr;
        if (cameraPicture) seen.insert("camera");
        Canvas canvas(compositor, 1);
        return canvas.frame(source.at(scene.times().sourceTime(seconds))->picture, state, cameraPicture);
    }

    Scene scene;
    std::set<std::string> seen;

private:
    void note(const FrameState& state, double seconds) {
        if (state.view.w < 0.9 * scene.state(0).view.w) seen.insert("zoom");
        if (seconds > 0 && state.view != scene.drawn(seconds - 1 / filmRate).view) seen.insert("moving view");
        if (state.pointer && state.pointer->opacity > 0.5) seen.insert("pointer");
        if (!state.ripples.empty()) seen.insert("ripple");
        if (state.pill) seen.insert("pill");
        if (state.caption) seen.insert("caption");
        if (state.clock) seen.insert("clock");
        if (state.titleOpacity > 0) seen.insert("title");
        if (state.endOpacity > 0) seen.insert("end card");
    }

    FrameCursor source;
    std::optional<CameraSource> camera;
    std::shared_ptr<const Compositor> compositor;
};

/// Stands where the encoder stands and judges what it is given.
class JudgingEncoder : public VideoEncoder {
public:
    JudgingEncoder(const VideoSettings& settings, Recomposition& truth) :
        truth(truth), next(settings.part ? settings.part->begin : 0) {
        stream.width = settings.width;
        stream.height = settings.height;
        stream.timeBase = settings.timeBase;
    }
    const StreamDescription& description() const override { return stream; }
    void encode(const PlanarView& picture, std::int64_t pts, const FrameHints& hints) override {
        const Picture before = std::move(shown);
        shown = Picture(picture);
        if (!hints.changedBlocks.empty()) judgeBlocks(before, hints.changedBlocks, pts);
        judge(pts);
    }
    void repeat(const PlanarView& picture, std::int64_t pts) override {
        shown = Picture(picture);
        judge(pts);
    }
    void finish(std::int64_t endPts) override { EXPECT_EQ(endPts, next); }
    bool makesParts() const override { return true; }

private:
    void judge(std::int64_t pts) {
        if (pts != next++) throw std::runtime_error("a frame is out of turn");
        if (!(shown == truth.frame(pts))) throw std::runtime_error("not the picture of a full drawing");
    }
    /// Blocks said to be unchanged have not changed by a single sample.
    void judgeBlocks(const Picture& before, std::span<const std::uint8_t> changed, std::int64_t pts) const {
        const int across = (shown.width() + 15) / 16;
        for (int plane = 0; plane < 3; ++plane) {
            const int size = plane == 0 ? 16 : 8;
            for (int y = 0; y < shown.planeHeight(plane); ++y)
                for (int x = 0; x < shown.planeWidth(plane); x += size) {
                    const auto length = static_cast<std::size_t>(std::min(size, shown.planeWidth(plane) - x));
                    if (!changed[static_cast<std::size_t>(y / size * across + x / size)] &&
                        std::memcmp(before.row(plane, y) + x, shown.row(plane, y) + x, length) != 0)
                        throw std::runtime_error("a changed block is not marked, frame " +
                                                 std::to_string(pts));
                }
        }
    }

    Recomposition& truth;
    StreamDescription stream;
    Picture shown;
    std::int64_t next;
};

class NoMovie : public MovieWriter {
public:
    int addTrack(const StreamDescription&) override { return 0; }
    void begin() override {}
    void write(int, const Packet&) override {}
    void setEnd(int, std::int64_t) override {}
    void finish() override {}
};

class FilmedMedia : public RealMedia {
public:
    FilmedMedia(const RandomFilm& film, Recomposition& truth) : film(film), truth(truth) {}
    std::unique_ptr<VideoReader> openVideo(const std::filesystem::path& file, int) const override {
        return std::make_unique<ReelReader>(file == film.options.camera ? film.camera : film.screen);
    }
    std::vector<std::unique_ptr<SoundReader>> openSound(const std::filesystem::path&) const override {
        return {};
    }
    std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings, PacketSink) const override {
        return std::make_unique<JudgingEncoder>(settings, truth);
    }
    std::unique_ptr<MovieWriter> createMovie(const std::filesystem::path&, MovieLayout) const override {
        return std::make_unique<NoMovie>();
    }

private:
    const RandomFilm& film;
    Recomposition& truth;
};

} // namespace

TEST(RandomFilms, AreWhatDrawingEveryFrameWholeGives) {
    Fonts::useOnlyCarriedFonts(true);
    std::set<std::string> seen;
    std::int64_t frames = 0;
    std::int64_t repeated = 0;
    for (std::uint32_t seed = 1; seed <= 16; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const RandomFilm film(seed, allOutputFormats[seed % allOutputFormats.size()]);
        Recomposition truth(film);
        const FilmedMedia media(film, truth);
        ExportStats stats;
        // Every other film in one go, the others range by range: the judge can follow one at a time.
        const Exporter::Sharing sharing{1, seed % 2 == 0 ? 1 : 100};
        ASSERT_NO_THROW(
            stats = Exporter::run(media, "recording.mp4", film.plan, film.options, "film.mp4", {}, sharing));
        EXPECT_EQ(stats.frames, truth.scene.frameCount());
        frames += stats.frames;
        repeated += stats.repeated;
        seen.insert(truth.seen.begin(), truth.seen.end());
    }
    Fonts::useOnlyCarriedFonts(false);
    // They were films of everything, and the export did leave alone what stayed.
    EXPECT_EQ(seen, (std::set<std::string>{"camera", "caption", "clock", "end card", "moving view", "pill",
                                           "pointer", "ripple", "title", "zoom"}));
    EXPECT_GT(frames, 1000);
    EXPECT_GT(repeated * 20, frames);
    RecordProperty("frames", std::to_string(frames));
    RecordProperty("repeated", std::to_string(repeated));
}
