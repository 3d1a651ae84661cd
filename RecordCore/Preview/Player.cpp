#include "RecordCore/Preview/Player.h"

#include "RecordCore/Media/SoundReader.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

namespace RecordCore {

namespace {

constexpr double nearly = 0.000001;
constexpr double forever = 3600;
constexpr double glance = 0.01;        ///< seconds between two looks at the sound's clock
constexpr double startPatience = 0.25; ///< seconds to wait for the sound before the film starts
constexpr double longestStretch = 1;   ///< seconds of sound made as a whole

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

SoundFeed::Opener opener(const MediaBackend& media, const PlayerItem& item) {
    return [&media, source = item.source, composition = item.composition]() -> std::unique_ptr<RetimedSound> {
        auto tracks = media.openSound(source);
        if (tracks.empty()) return nullptr;
        return std::make_unique<RetimedSound>(composition, std::move(tracks), media.makeTimeStretcher(),
                                              longestStretch);
    };
}

} // namespace

Player::Player(const MediaBackend& media, const PlayerItem& item, std::unique_ptr<SoundOutput> soundOutput,
               Handlers playerHandlers) :
    handlers(std::move(playerHandlers)),
    output(std::move(soundOutput)), renderer(item.video.instruction.renderer) {
    film.scene = renderer->scene();
    film.composition = item.composition;
    film.fps = 1 / item.video.frameDuration;
    pictures = std::make_unique<PictureFeed>(media.openVideo(item.source),
                                             item.camera ? media.openVideo(*item.camera, 1) : nullptr,
                                             [this] { news(); });
    if (output && item.hasSound) sound = std::make_unique<SoundFeed>(opener(media, item), [this] { news(); });
    wishes.seek = 0;
    thread = std::thread([this] { run(); });
}

Player::~Player() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    wake.notify_all();
    thread.join();
    // Before what it takes its sound from.
    output.reset();
}

std::uint64_t Player::update(Film next, std::optional<double> at, std::function<void()> shown) {
    std::uint64_t number = 0;
    wish([&](Wishes& wanted) {
        wanted.film = std::move(next);
        if (at) number = wishSeek(wanted, *at);
        if (shown) wanted.shown.push_back(std::move(shown));
    });
    return number;
}

void Player::play() {
    wish([](Wishes& wanted) { wanted.play = true; });
}

void Player::pause() {
    wish([](Wishes& wanted) { wanted.play = false; });
}

std::uint64_t Player::seek(double outputSeconds) {
    std::uint64_t number = 0;
    wish([&](Wishes& wanted) { number = wishSeek(wanted, outputSeconds); });
    return number;
}

/// With the lock held.
std::uint64_t Player::wishSeek(Wishes& wanted, double seconds) {
    if (std::isfinite(seconds)) wanted.seek = seconds;
    return wanted.number = ++seeks;
}

void Player::wish(const std::function<void(Wishes&)>& change) {
    {
        const std::lock_guard lock(mutex);
        change(wishes);
    }
    wake.notify_one();
}

void Player::news() {
    {
        const std::lock_guard lock(mutex);
        hasNews = true;
    }
    wake.notify_one();
}

Player::Stats Player::stats() const {
    const std::lock_guard lock(mutex);
    return counts;
}

bool Player::followsSound() const {
    const std::lock_guard lock(mutex);
    return soundLeads;
}

void Player::count(const std::function<void(Stats&)>& change) {
    const std::lock_guard lock(mutex);
    change(counts);
}

void Player::run() {
    double pause = 0;
    while (true) {
        Wishes wanted;
        {
            std::unique_lock lock(mutex);
            wake.wait_for(lock, std::chrono::duration<double>(pause),
                          [this] { return ending || hasNews || wishes.any(); });
            if (ending) break;
            hasNews = false;
            wanted = std::exchange(wishes, {});
        }
        if (wanted.any()) follow(std::move(wanted));
        pause = work();
    }
    if (output) output->stop();
}

/// Carries out what was asked for, all at once: in whatever order it was said, the film comes first, then
/// the place, then whether it plays.
void Player::follow(Wishes wanted) {
    bool moved = false;
    bool redraw = false;
    lastSeek = std::max(lastSeek, wanted.number);
    if (wanted.film) {
        Film& next = *wanted.film;
        awaiting.insert(awaiting.end(), std::make_move_iterator(wanted.shown.begin()),
                        std::make_move_iterator(wanted.shown.end()));
        if (!(next.composition == film.composition)) {
            if (film.scene && next.scene)
                position = next.scene->times().outputTime(film.scene->times().sourceTime(position));
            film.composition = std::move(next.composition);
            if (sound) sound->retime(film.composition);
            moved = true;
        }
        film.scene = next.scene;
        renderer->update(std::move(next.scene), std::move(next.compositor));
        redraw = true;
        // A frame composed with the old look is composed again.
        if (composed && !moved) compose(*std::exchange(composed, std::nullopt));
    }
    if (wanted.seek) {
        position = *wanted.seek;
        moved = true;
    }
    const bool wasPlaying = phase != Phase::paused;
    const bool plays = wanted.play.value_or(wasPlaying) && film.scene && film.scene->outputDuration() > 0;
    position = std::clamp(position, 0.0, film.scene ? film.scene->outputDuration() : 0.0);
    if (plays && wanted.play.value_or(false) && !wasPlaying && position >= lastMoment()) {
        position = 0;
        moved = true;
    }

    if (wasPlaying && (!plays || moved)) fallSilent();
    if (!film.scene) return;
    if (plays && (moved || !wasPlaying)) {
        phase = Phase::starting;
        startedAt = now();
        composed.reset();
        firstShown = false;
        pictures->play(film, indexAt(position));
        if (sound) sound->play(std::llround(position * soundRate));
    } else if (!plays && (moved || wasPlaying)) {
        phase = Phase::paused;
        pictures->show(film, indexAt(position));
    } else if (!plays && redraw && last) {
        // The picture is the same, its looks are new.
        if (compose(*last)) deliver();
    }
    if (plays != wasPlaying && handlers.onPlaying) handlers.onPlaying(plays);
}

double Player::work() {
    if (!failed)
        if (const auto problem = pictures->failure()) {
            failed = true;
            if (phase != Phase::paused) halt(false);
            for (const auto& call : std::exchange(awaiting, {}))
                call();
            if (handlers.onFailure) handlers.onFailure(*problem);
        }
    switch (phase) {
    case Phase::paused:
        return workPaused();
    case Phase::starting:
        return workStarting();
    case Phase::running:
        return workRunning();
    }
    return forever;
}

double Player::workPaused() {
    if (auto frame = pictures->takeLatest(); frame && compose(std::move(*frame))) deliver();
    return forever;
}

/// The film starts when its first frame is there, and the sound to go with it.
double Player::workStarting() {
    while (!firstShown) {
        auto frame = pictures->take(indexAt(position));
        if (!frame) return forever;
        firstShown = frame->exact;
        if (compose(std::move(*frame))) deliver();
    }
    const double waited = now() - startedAt;
    if (sound && !sound->ready() && waited < startPatience) return startPatience - waited;
    begin();
    return 0;
}

void Player::begin() {
    phase = Phase::running;
    PlayClock::Heard heard;
    if (sound) {
        output->start([feed = sound.get()](std::span<float> samples) { feed->take(samples); });
        heard = [out = output.get()]() -> std::optional<double> {
            const auto positions = out->heard();
            return positions ? std::optional(*positions / soundRate) : std::nullopt;
        };
    }
    clock.start(position, now(), std::move(heard));
}

double Player::workRunning() {
    while (true) {
        const double time = clock.at(now());
        {
            const std::lock_guard lock(mutex);
            soundLeads = clock.followsSound();
            if (ending || wishes.any()) return 0;
        }
        const std::int64_t due = static_cast<std::int64_t>(std::floor(time * film.fps + nearly));
        pictures->playedTo(time);
        if (composed && composed->index <= due) {
            const std::int64_t index = composed->index;
            const std::int64_t left = std::max<std::int64_t>(index - lastIndex - 1, 0);
            const bool exact = composed->exact;
            count([&](Stats& all) {
                ++all.shown;
                all.dropped += left;
                if (!exact) ++all.inexact;
            });
            deliver();
            continue;
        }
        if (time >= film.scene->outputDuration()) {
            halt(true);
            return 0;
        }
        if (!composed) {
            auto frame = pictures->take(std::max(lastIndex + 1, due));
            if (frame && compose(std::move(*frame))) continue;
            return glance;
        }
        return std::min(glance, static_cast<double>(composed->index) / film.fps - time);
    }
}

void Player::fallSilent() {
    if (output) output->stop();
    if (sound) sound->stop();
    clock.stop();
    composed.reset();
    const std::lock_guard lock(mutex);
    soundLeads = false;
}

void Player::halt(bool atEnd) {
    fallSilent();
    phase = Phase::paused;
    if (atEnd) {
        position = film.scene->outputDuration();
        if (lastIndex != indexAt(position)) pictures->show(film, indexAt(position));
        if (handlers.onTime) handlers.onTime(position, lastSeek);
    }
    if (handlers.onPlaying) handlers.onPlaying(false);
}

/// Composes a frame, to be delivered when its time has come.
bool Player::compose(FeedFrame frame) {
    if (!frame.screen) return false;
    const auto same = [](const std::optional<VideoFrame>& picture, const void* owner, double time) {
        return picture && picture->owner.get() == owner && picture->time == time;
    };
    SourceHints hints;
    hints.sameSource = same(frame.screen, shownScreen, shownScreenTime);
    hints.sameCamera = same(frame.camera, shownCamera, shownCameraTime);
    const PlanarView* camera = frame.camera ? &frame.camera->picture : nullptr;
    if (!renderer->compose(frame.screen->picture, camera, static_cast<double>(frame.index) / film.fps, hints))
        return false;
    shownScreen = frame.screen->owner.get();
    shownScreenTime = frame.screen->time;
    shownCamera = frame.camera ? frame.camera->owner.get() : nullptr;
    shownCameraTime = frame.camera ? frame.camera->time : 0;
    const Picture& picture = *renderer->picture();
    if (renderer->changed() || !current || current->width != picture.width() ||
        current->height != picture.height()) {
        current = images.get(picture.width(), picture.height());
        renderer->draw(*current);
    }
    count([](Stats& all) { ++all.composed; });
    composed = std::move(frame);
    return true;
}

void Player::deliver() {
    last = std::move(*composed);
    composed.reset();
    lastIndex = last->index;
    const Compositor& compositor = *renderer->composedBy();
    PreviewFrame frame;
    frame.image = current;
    frame.seconds = static_cast<double>(last->index) / film.fps;
    frame.seek = lastSeek;
    frame.exact = last->exact;
    frame.view = renderer->view();
    frame.window = compositor.placement().window.rect;
    frame.crop = compositor.settings().crop;
    if (phase == Phase::running) position = frame.seconds;
    if (handlers.onFrame) handlers.onFrame(frame);
    if (phase == Phase::running && handlers.onTime) handlers.onTime(frame.seconds, lastSeek);
    renderer->announce();
    for (const auto& call : std::exchange(awaiting, {}))
        call();
}

std::int64_t Player::indexAt(double seconds) const {
    const std::int64_t count = film.scene->frameCount();
    const auto index = static_cast<std::int64_t>(std::floor(seconds * film.fps + nearly));
    return std::clamp<std::int64_t>(index, 0, std::max<std::int64_t>(count - 1, 0));
}

/// From here on there is nothing left to play.
double Player::lastMoment() const {
    return film.scene->outputDuration() - nearly;
}

} // namespace RecordCore
