#pragma once

#include "OmbrelRecord/AppModel/AppModel.h"
#include "OmbrelRecord/AppModel/Thumbnails.h"
#include "OmbrelRecord/Application/Snapshot.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <filesystem>
#include <memory>
#include <vector>

namespace OmbrelRecord {

/// The application's model in a state that is worth a picture: a desktop that shows a given recording, two
/// displays and some windows, and a library of that recording. Nothing of the session is touched. For
/// snapshots and for the views' tests. Main thread.
class StillLife {
public:
    struct State {
        int recordings = 7;
        bool access = true;
        bool displays = true;
        bool camera = false;
        bool microphone = true;
        bool seesKeys = true;
        std::string hotKeyTrouble;
        bool cutOff = false; ///< a recording that was cut off is offered
    };

    /// `media` outlives the object; `video` is what the desktop and the recordings show.
    StillLife(const RecordCore::MediaBackend& media, const std::filesystem::path& video, const State& state);
    ~StillLife();

    AppModel& model();
    /// Lets come what the model has asked for.
    void settle();
    /// Recording, for as long as nobody stops it; or the seconds before.
    void record();
    void countdown();
    /// The waiting screen at a share of its way.
    void work(double share);

    /// The views of home, countdown and recording panel. They keep what they show alive.
    static std::vector<Snapshot::View> views(const RecordCore::MediaBackend& media,
                                             const std::filesystem::path& video);

private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace OmbrelRecord
