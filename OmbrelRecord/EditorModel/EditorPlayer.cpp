#include "OmbrelRecord/EditorModel/EditorPlayer.h"

#include "OmbrelRecord/AppModel/Diag.h"
#include "RecordCore/Preview/Preview.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

/// A picture as large as no view is yet.
const QSize unseen(960, 540);
/// Larger pictures are not worth their time.
constexpr double largestScale = 1.5;

QImage imageOf(const std::shared_ptr<const PreviewImage>& pixels) {
    // The image shares the pixels and holds them.
    return {pixels->pixels.data(),
            pixels->width,
            pixels->height,
            pixels->stride(),
            QImage::Format_RGB32,
            [](void* held) { delete static_cast<std::shared_ptr<const PreviewImage>*>(held); },
            new std::shared_ptr<const PreviewImage>(pixels)};
}

} // namespace

/// What the preparing thread and the player use; they may outlive the object that shows the film.
class EditorPlayer::Workshop : public std::enable_shared_from_this<Workshop> {
public:
    /// `hear` is called on the main thread, while the mailbox is there.
    Workshop(std::shared_ptr<const MediaBackend> media, const OpenedRecording& recording,
             SoundOutputFactory makeSound, Mailbox::Address to, std::function<void(const News&)> hear) :
        media(std::move(media)),
        video(recording.video), camera(recording.camera()), info(recording.info), log(recording.log),
        makeSound(std::move(makeSound)), to(std::move(to)), hear(std::move(hear)) {}

    /// On the preparing thread.
    std::shared_ptr<Prepared> prepared(Request request, bool makePlayer);

    /// Nobody waits for what is prepared any more.
    std::atomic<bool> left{false};

private:
    void tell(const std::function<void(News&)>& change);

    const std::shared_ptr<const MediaBackend> media;
    const std::filesystem::path video;
    const std::optional<std::filesystem::path> camera;
    const SourceInfo info;
    const std::optional<InputLog> log;
    const SoundOutputFactory makeSound;
    const Mailbox::Address to;
    const std::function<void(const News&)> hear;

    std::mutex mutex;
    News news; ///< guarded by the mutex
    bool newsPosted = false;

    std::shared_ptr<const Compositor> compositor; ///< of the preparing thread
};

EditorPlayer::Factory EditorPlayer::factory(std::shared_ptr<const MediaBackend> media,
                                            SoundOutputFactory makeSound, Disposal* disposal) {
    return [media = std::move(media), makeSound = std::move(makeSound),
            disposal](const OpenedRecording& recording) {
        return std::make_unique<EditorPlayer>(media, recording, makeSound, disposal);
    };
}

EditorPlayer::EditorPlayer(std::shared_ptr<const MediaBackend> media, const OpenedRecording& recording,
                           SoundOutputFactory makeSound, Disposal* disposal) :
    disposal(disposal),
    workshop(std::make_shared<Workshop>(std::move(media), recording, std::move(makeSound), mailbox.address(),
                                        [this](const News& heard) { hear(heard); })) {
    connect(&shownPicture, &PreviewPicture::viewSizeChanged, this, [this] {
        if (!current) return;
        Request again = wanted ? *wanted : *current;
        again.scale = scaleFor(again.project);
        if (!wanted && again.scale == current->scale) return;
        wanted = std::move(again);
        prepare();
    });
}

EditorPlayer::~EditorPlayer() {
    workshop->left = true;
    Disposal::drop(disposal, std::move(queue));
    Disposal::drop(disposal, std::move(engine));
}

double EditorPlayer::scaleFor(const Project& project) const {
    const QSize room = shownPicture.viewSize().isEmpty() ? unseen : shownPicture.viewSize();
    const double scale = Preview::fittingScale(project.outputFormat(), room.width(), room.height());
    return std::min(scale, largestScale);
}

void EditorPlayer::update(const Project& project, const Plan& plan, std::function<void()> shown) {
    const Size shape = canvas(project.outputFormat());
    shownPicture.setAspect(shape.width / shape.height);
    wanted = Request{project, plan, scaleFor(project)};
    if (shown) asking.push_back(std::move(shown));
    prepare();
}

/// Prepares what is wanted, one at a time.
void EditorPlayer::prepare() {
    if (preparing || !wanted) return;
    preparing = true;
    current = std::exchange(wanted, std::nullopt);
    queue->post([this, workshop = workshop, to = mailbox.address(), request = *current,
                 told = std::exchange(asking, {}), first = !engine]() mutable {
        const std::shared_ptr<Prepared> result = workshop->prepared(std::move(request), first);
        if (!workshop->left) to.post([this, result, told = std::move(told)] { ready(*result, told); });
    });
}

std::shared_ptr<EditorPlayer::Prepared> EditorPlayer::Workshop::prepared(Request request, bool makePlayer) {
    auto result = std::make_shared<Prepared>();
    try {
        const Project& project = request.project;
        const auto footage = Preview::cameraFootage(*media, project, log, camera);
        const auto folder = video.parent_path();
        if (makePlayer) {
            Preview::Built built =
                Preview::build(*media, video, request.plan, project, log, camera, request.scale);
            compositor = built.renderer->compositor();
            result->film = {built.renderer->scene(), compositor, built.item.composition};
            Player::Handlers handlers;
            handlers.onFrame = [self = shared_from_this()](const PreviewFrame& frame) {
                self->tell([&](News& all) { all.frame = frame; });
            };
            handlers.onTime = [self = shared_from_this()](double seconds, std::uint64_t seek) {
                self->tell([&](News& all) {
                    all.time = seconds;
                    all.timeSeek = seek;
                });
            };
            handlers.onPlaying = [self = shared_from_this()](bool plays) {
                self->tell([&](News& all) { all.playing = plays; });
            };
            handlers.onFailure = [](const std::string& problem) {
                Diag::log("preview: no pictures " + problem);
            };
            result->made = std::make_shared<Player>(*media, built.item, makeSound ? makeSound() : nullptr,
                                                    std::move(handlers));
        } else {
            CompositorSettings settings = Preview::compositorSettings(
                request.plan, project, info, footage.has_value(), folder, request.scale);
            if (!compositor || !(compositor->settings() == settings))
                compositor = std::make_shared<const Compositor>(std::move(settings));
            result->film = {std::make_shared<const Scene>(request.plan, project, log, Preview::fps),
                            compositor, Timeline::composition(request.plan, footage)};
        }
    } catch (const std::exception& error) {
        result->failure = *error.what() ? error.what() : "unknown error";
    }
    result->request = std::move(request);
    return result;
}

void EditorPlayer::ready(Prepared& result, const std::vector<std::function<void()>>& told) {
    preparing = false;
    const auto tellAll = [told] {
        for (const auto& one : told)
            one();
    };
    if (!result.failure.empty()) {
        Diag::log("preview: " + result.failure);
        tellAll();
    } else {
        if (result.made) engine = std::move(result.made);
        playing = result.request.plan;
        // Another film is on its way, and the seek is in its times.
        const bool later = wanted && !(wanted->plan == *playing);
        const auto at = later ? std::nullopt : std::exchange(heldSeek, std::nullopt);
        const std::uint64_t number = engine->update(std::move(result.film), at,
                                                    [to = mailbox.address(), tellAll] { to.post(tellAll); });
        lastSeek = std::max(lastSeek, number);
        if (const auto play = std::exchange(heldPlay, std::nullopt)) *play ? engine->play() : engine->pause();
    }
    prepare();
}

void EditorPlayer::play() {
    engine ? engine->play() : void(heldPlay = true);
}

void EditorPlayer::pause() {
    engine ? engine->pause() : void(heldPlay = false);
}

void EditorPlayer::seek(double outputSeconds) {
    const std::optional<Request>& next = wanted ? wanted : current;
    const bool otherFilm = (preparing || wanted) && next && (!playing || !(next->plan == *playing));
    if (!engine || otherFilm)
        heldSeek = outputSeconds;
    else
        lastSeek = engine->seek(outputSeconds);
}

/// On the player's thread: the main thread hears of it when it gets to it, of the latest only.
void EditorPlayer::Workshop::tell(const std::function<void(News&)>& change) {
    bool post = false;
    {
        const std::lock_guard lock(mutex);
        change(news);
        post = !std::exchange(newsPosted, true);
    }
    if (!post) return;
    to.post([self = shared_from_this()] {
        News heard;
        {
            const std::lock_guard lock(self->mutex);
            heard = std::exchange(self->news, {});
            self->newsPosted = false;
        }
        self->hear(heard);
    });
}

void EditorPlayer::hear(const News& heard) {
    if (heard.frame) show(*heard.frame);
    // A time from before the latest seek would move the playhead back.
    const bool fresh = heard.time && heard.timeSeek >= lastSeek && !heldSeek;
    if (fresh && onTime) onTime(*heard.time);
    if (heard.playing && onPlaying) onPlaying(*heard.playing);
}

void EditorPlayer::show(const PreviewFrame& frame) {
    const PreviewImage& pixels = *frame.image;
    PreviewPicture::Placement place;
    place.window = QRectF(frame.window.x / pixels.width, frame.window.y / pixels.height,
                          frame.window.width / pixels.width, frame.window.height / pixels.height);
    place.view = frame.view;
    place.crop = frame.crop;
    const bool same = frame.image == shownPixels;
    shownPixels = frame.image;
    shownPicture.show(same ? shownPicture.image() : imageOf(frame.image), frame.seconds, frame.exact, place);
}

} // namespace OmbrelRecord
