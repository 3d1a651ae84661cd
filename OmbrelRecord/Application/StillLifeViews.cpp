#include "OmbrelRecord/Application/StillLife.h"

#include <QtQuick/QQuickItem>
#include <algorithm>

namespace OmbrelRecord {

namespace {

constexpr QSize homeSize(1320, 788);

QVariantMap showing(const std::shared_ptr<StillLife>& life) {
    return {{QStringLiteral("app"), QVariant::fromValue<QObject*>(&life->model())}};
}

/// Of the recordings whose cards are in sight.
bool stillsAreThere(StillLife& life) {
    const RecentsModel& recents = *life.model().recents();
    for (int row = 0; row < std::min(5, recents.count()); ++row)
        if (recents.data(recents.index(row), RecentsModel::durationRole).toDouble() <= 0) return false;
    return true;
}

} // namespace

std::vector<Snapshot::View> StillLife::views(const RecordCore::MediaBackend& media,
                                             const std::filesystem::path& video) {
    const auto make = [&](const State& state) { return std::make_shared<StillLife>(media, video, state); };
    std::vector<Snapshot::View> views;
    const auto home = [&](const char* name, std::shared_ptr<StillLife> life) -> Snapshot::View& {
        views.push_back(
            {QLatin1String(name),
             homeSize,
             QStringLiteral("HomeView"),
             showing(life),
             {},
             [life](QQuickItem& view) { return view.property("ready").toBool() && stillsAreThere(*life); }});
        return views.back();
    };
    home("home", make({}));
    State state;
    state.recordings = 0;
    state.microphone = false;
    home("home-first", make(state));
    state = {};
    state.camera = true;
    state.seesKeys = false;
    home("home-camera", make(state));
    state = {};
    state.hotKeyTrouble =
        "Super+Alt+R belongs to another program, so it doesn't start a recording here. Use the "
        "Record button.";
    home("home-message", make(state));
    state = {};
    state.access = false;
    state.recordings = 0;
    home("home-access", make(state));
    state = {};
    state.displays = false;
    home("home-no-display", make(state));

    auto life = make({});
    home("home-sources", life).arrange = [life](QQuickItem& view) {
        QMetaObject::invokeMethod(&view, "showPicker");
        life->settle();
        for (int i = 0; i < 8; ++i)
            life->settle();
    };

    life = make({});
    life->work(0.42);
    views.push_back({QStringLiteral("working"),
                     homeSize,
                     QStringLiteral("WorkingView"),
                     {{QStringLiteral("message"), life->model().workingMessage()},
                      {QStringLiteral("cancellable"), life->model().cancellable()}},
                     {},
                     {}});
    life = make({});
    life->countdown();
    views.push_back({QStringLiteral("countdown"),
                     {240, 240},
                     QStringLiteral("CountdownFace"),
                     {{QStringLiteral("number"), life->model().countdown()}},
                     {},
                     {}});
    life = make({});
    life->record();
    views.push_back({QStringLiteral("recording"),
                     {320, 82},
                     QStringLiteral("RecordingFace"),
                     showing(life),
                     {},
                     [life](QQuickItem&) { return true; }});
    life = make({});
    life->record();
    life->model().discardRecording();
    views.push_back({QStringLiteral("discard"),
                     {420, 190},
                     QStringLiteral("QuestionFace"),
                     {{QStringLiteral("question"), life->model().question()}},
                     {},
                     {}});
    return views;
}

} // namespace OmbrelRecord
