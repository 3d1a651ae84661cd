#include "OmbrelRecord/EditorModel/LookPictures.h"

#include "OmbrelRecord/AppModel/Images.h"
#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Planning/Planner.h"
#include "RecordCore/Preview/Preview.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

/// A hand on a slider or on the playhead shall have come to rest.
constexpr int restMilliseconds = 150;

} // namespace

/// Composes the pictures; lives on the queue's thread. Decodes only when another moment is wanted.
class LookPictures::Painter {
public:
    Painter(const MediaBackend& media, OpenedRecording recording) :
        media(media), recording(std::move(recording)) {}

    QImage paint(const Key& key) {
        try {
            const Project& project = key.project;
            const Plan plan = Planner::plan(recording.info, recording.samples, recording.log, project,
                                            Planner::viewportAspect(project, recording.info));
            const double scale =
                Preview::fittingScale(project.outputFormat(), key.room.width(), key.room.height());
            if (!(scale > 0)) return {};
            look(key.time);
            const auto file = recording.camera();
            std::optional<CameraSource> camera;
            if (file && project.cameraShow)
                camera.emplace(media.openVideo(*file, 1), plan,
                               recording.log ? recording.log->cameraOffset.value_or(0) : 0);
            Canvas canvas(Preview::compositor(plan, project, recording.info, camera.has_value(),
                                              recording.files.folder, scale),
                          1);
            const Scene scene(plan, project, recording.log, Preview::fps);
            const double at = std::clamp(plan.outputTime(key.time), 0.0, plan.outputDuration());
            return imageOf(composeFrame(scene, canvas, *frames, camera ? &*camera : nullptr, at).view());
        } catch (const std::exception&) {
            // The list of looks is of use without pictures, too.
            frames.reset();
            return {};
        }
    }

private:
    /// Opened anew for each moment: going forward a cursor decodes everything in between.
    void look(double time) {
        if (frames && time == shownTime) return;
        frames.emplace(media.openVideo(recording.video, 1));
        shownTime = time;
    }

    const MediaBackend& media;
    const OpenedRecording recording;
    std::optional<FrameCursor> frames;
    double shownTime = 0;
};

LookPictures::LookPictures(QObject* parent) :
    QObject(parent), round(std::make_shared<std::atomic<int>>(0)), queue(std::make_shared<SerialQueue>()) {
    soon.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &LookPictures::ask);
}

LookPictures::~LookPictures() {
    ++*round;
    Disposal::drop(disposal, std::move(queue));
}

void LookPictures::setEditor(EditorModel* editor) {
    if (editor == model) return;
    if (model) disconnect(model, nullptr, this, nullptr);
    model = editor;
    entries.clear();
    painter.reset();
    if (model) {
        disposal = model->disposal();
        connect(model, &EditorModel::planChanged, this, &LookPictures::askSoon);
        connect(model, &EditorModel::projectChanged, this, &LookPictures::askSoon);
        connect(model, &EditorModel::playheadChanged, this, &LookPictures::askSoon);
        connect(model, &EditorModel::playingChanged, this, &LookPictures::askSoon);
        if (model->media()) painter = std::make_shared<Painter>(*model->media(), model->recording());
    }
    askSoon();
    Q_EMIT editorChanged();
}

void LookPictures::setLooks(LookPresets* looks) {
    if (looks == presets) return;
    if (presets) disconnect(presets, nullptr, this, nullptr);
    presets = looks;
    if (presets) {
        // Rows have moved: what was shown in them is another look's.
        connect(presets, &LookPresets::countChanged, this, [this] {
            ++*round;
            askSoon();
        });
        connect(presets, &LookPresets::dataChanged, this, &LookPictures::askSoon);
    }
    askSoon();
    Q_EMIT looksChanged();
}

void LookPictures::setRoom(const QSizeF& pixels) {
    if (pixels.toSize() == most) return;
    most = pixels.toSize();
    askSoon();
    Q_EMIT roomChanged();
}

QImage LookPictures::picture(int row) const {
    return row >= 0 && row < static_cast<int>(entries.size()) ? entries[static_cast<std::size_t>(row)].image
                                                              : QImage();
}

void LookPictures::askSoon() {
    const bool before = settled();
    // The first ones at once.
    soon.start(entries.empty() ? 0 : restMilliseconds);
    if (before) Q_EMIT settledChanged();
}

void LookPictures::ask() {
    if (!model || !presets || !painter || most.isEmpty()) {
        Q_EMIT settledChanged();
        return;
    }
    if (model->playing() && !entries.empty()) {
        Q_EMIT settledChanged();
        return;
    }
    const int mine = ++*round;
    open = 0;
    std::vector<Entry> now(static_cast<std::size_t>(presets->count()));
    struct Job {
        int row;
        Key key;
    };
    std::vector<Job> jobs;
    for (int row = 0; row < presets->count(); ++row) {
        Entry& entry = now[static_cast<std::size_t>(row)];
        entry.key = {model->project(), model->sourceTime(), most};
        presets->at(row).applyTo(entry.key.project);
        const auto known = std::find_if(entries.begin(), entries.end(), [&](const Entry& each) {
            return !each.image.isNull() && each.key == entry.key;
        });
        if (known != entries.end()) {
            entry.image = known->image;
            continue;
        }
        // Until it is there, the old one of the row.
        if (entries.size() == now.size()) entry.image = entries[static_cast<std::size_t>(row)].image;
        jobs.push_back({row, entry.key});
    }
    entries = std::move(now);
    open = static_cast<int>(jobs.size());
    for (int row = 0; row < presets->count(); ++row)
        Q_EMIT pictureChanged(row);
    for (Job& job : jobs)
        queue->post(
            [this, to = mailbox.address(), mine, round = round, painter = painter, job = std::move(job)] {
                if (round->load() != mine) return;
                const QImage image = painter->paint(job.key);
                to.post([this, mine, row = job.row, key = job.key, image] {
                    if (this->round->load() == mine) show(row, key, image);
                });
            });
    if (open == 0) Q_EMIT settledChanged();
}

void LookPictures::show(int row, const Key& key, const QImage& image) {
    Entry& entry = entries[static_cast<std::size_t>(row)];
    entry = {key, image};
    --open;
    Q_EMIT pictureChanged(row);
    if (open == 0) Q_EMIT settledChanged();
}

} // namespace OmbrelRecord
