#pragma once

#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Media/SoundOutput.h"
#include "RecordCore/Preview/PictureFeed.h"
#include "RecordCore/Preview/PlayClock.h"
#include "RecordCore/Preview/Preview.h"
#include "RecordCore/Preview/PreviewImage.h"
#include "RecordCore/Preview/SoundFeed.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace RecordCore {

/// A frame of a film as a player shows it.
struct PreviewFrame {
    /// As large as the compositor's canvas. The same object as in the frame before when the picture has not
    /// changed; it stays as it is as long as it is held.
    std::shared_ptr<const PreviewImage> image;
    double seconds = 0;         ///< output time of the frame
    std::uint64_t seek = 0;     ///< number of the seek that had been carried out by then
    bool exact = true;          ///< false for one that stands in for a picture that is still being decoded
    NRect view = NRect::full(); ///< what of the (cropped) recording is shown,
    CanvasRect window;          ///< and where in the image, in pixels
    std::optional<NRect> crop;  ///< of the recording
};

/// Plays the planned film of a recording: the frames of the export, in step with its sound. What is asked for
/// is done on threads of the player's own, and the latest wish counts: seeks that follow one another quickly
/// are not all carried out. Callable from any thread.
class Player {
public:
    /// All are called on the player's thread and must not wait for anything that waits for the player.
    struct Handlers {
        std::function<void(const PreviewFrame&)> onFrame;
        /// The film has come to this time, the seek of this number having been carried out; with each frame
        /// while it plays, and at the end.
        std::function<void(double outputSeconds, std::uint64_t seek)> onTime;
        std::function<void(bool playing)> onPlaying;
        /// There will be no pictures any more, and why.
        std::function<void(const std::string&)> onFailure;
    };

    struct Film {
        std::shared_ptr<const Scene> scene;
        std::shared_ptr<const Compositor> compositor;
        Composition composition;
    };

    /// Opens the videos and shows the first frame. `media` outlives the player; `output` may be null: then
    /// it plays silently. Throws RecordingError when the videos cannot be read.
    Player(const MediaBackend& media, const PlayerItem& item, std::unique_ptr<SoundOutput> output,
           Handlers handlers);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Plays this film of the same recording from now on, without opening anything anew. The moment of the
    /// recording that is shown stays, wherever it now stands in the film, unless `at` (output seconds) says
    /// otherwise. `shown` is called on the player's thread when a frame of it has been shown. Returns the
    /// number of the seek to `at`, if it is one.
    std::uint64_t update(Film film, std::optional<double> at = std::nullopt,
                         std::function<void()> shown = nullptr);

    void play();
    void pause();
    /// Returns the number of this seek: they are counted from 1.
    std::uint64_t seek(double outputSeconds);

    struct Stats {
        std::int64_t shown = 0;    ///< frames shown while playing
        std::int64_t dropped = 0;  ///< frames left out because their time was over
        std::int64_t inexact = 0;  ///< of those shown, ones whose right picture was not decoded in time
        std::int64_t composed = 0; ///< frames composed, also while it does not play
    };
    Stats stats() const;
    /// Whether the sound's clock leads at the moment.
    bool followsSound() const;

private:
    struct Wishes {
        std::optional<Film> film;
        std::vector<std::function<void()>> shown;
        std::optional<double> seek;
        std::uint64_t number = 0; ///< of that seek
        std::optional<bool> play;
        bool any() const { return film || seek || play; }
    };
    enum class Phase { paused, starting, running };

    void wish(const std::function<void(Wishes&)>& change);
    std::uint64_t wishSeek(Wishes& wanted, double seconds);
    void news();
    void run();
    void follow(Wishes wishes);
    /// Does what there is to do; returns the seconds after which there may be more.
    double work();
    double workPaused();
    double workStarting();
    double workRunning();
    void begin();
    void fallSilent();
    void halt(bool atEnd);
    bool compose(FeedFrame frame);
    void deliver();
    std::int64_t indexAt(double seconds) const;
    double lastMoment() const;
    void count(const std::function<void(Stats&)>& change);

    Handlers handlers;
    std::unique_ptr<SoundOutput> output;
    std::shared_ptr<PreviewRenderer> renderer;

    mutable std::mutex mutex;
    std::condition_variable wake;
    // Guarded by the mutex.
    Wishes wishes;
    bool hasNews = false;
    bool ending = false;
    Stats counts;
    bool soundLeads = false;
    std::uint64_t seeks = 0; ///< asked for so far

    // Of the player's thread.
    PictureFeed::Film film;
    Phase phase = Phase::paused;
    double position = 0;         ///< output seconds: of the frame shown, or where it plays from
    std::uint64_t lastSeek = 0;  ///< number of the seek carried out last
    double startedAt = 0;        ///< when `starting` began, seconds of the system's clock
    bool firstShown = false;     ///< since then
    std::int64_t lastIndex = -1; ///< of the frame shown last
    PlayClock clock;
    std::optional<FeedFrame> composed; ///< and not delivered yet
    std::optional<FeedFrame> last;     ///< delivered last
    const void* shownScreen = nullptr; ///< whose pictures the renderer had last
    const void* shownCamera = nullptr;
    double shownScreenTime = 0;
    double shownCameraTime = 0;
    PreviewImages images;
    std::shared_ptr<PreviewImage> current;       ///< the image composed last
    std::vector<std::function<void()>> awaiting; ///< to be called when the film is shown
    bool failed = false;

    // Ended first.
    std::unique_ptr<SoundFeed> sound;
    std::unique_ptr<PictureFeed> pictures;
    std::thread thread;
};

} // namespace RecordCore
