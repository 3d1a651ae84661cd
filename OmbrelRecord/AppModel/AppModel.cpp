#include "OmbrelRecord/AppModel/AppModel.h"

#include "OmbrelRecord/AppModel/AppModelParts.h"
#include "OmbrelRecord/AppModel/Wording.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"

#include <QtCore/QMetaObject>
#include <fmt/format.h>
#include <memory>
#include <utility>
#include <vector>

namespace OmbrelRecord {

using namespace RecordCore;
using namespace AppModelParts;

AppModel::AppModel(AppParts given, QObject* parent) :
    QObject(parent), parts(std::move(given)),
    mics(*parts.sound,
         [this](std::function<void()> work) {
             QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
         }),
    recentList(new RecentsModel(parts.thumbnails, this)) {
    mics.onChange = [this] { Q_EMIT microphoneLevelChanged(); };
    parts.cameras->onPicture = [this] {
        ++cameraCount;
        cameraProblem.clear();
        Q_EMIT cameraPictureChanged();
    };
    parts.cameras->onFailure = [this](const std::string& description) {
        cameraCount = 0;
        cameraProblem = text(description);
        Q_EMIT cameraPictureChanged();
    };
    if (parts.hotKey) parts.hotKey->onPressed = [this] { hotKeyPressed(); };

    withSystemAudio = remembered(Settings::systemAudio);
    withMicrophone = remembered(Settings::microphone);
    withCamera = remembered(Settings::camera);
    if (parts.settings) {
        chosenCamera = parts.settings->value(text(Settings::cameraID)).toString();
        const QString microphone = parts.settings->value(text(Settings::microphoneID)).toString();
        if (!microphone.isEmpty()) mics.select(microphone.toStdString());
    }
}

AppModel::~AppModel() {
    parts.cameras->onPicture = nullptr;
    parts.cameras->onFailure = nullptr;
    if (parts.hotKey) parts.hotKey->onPressed = nullptr;
    mics.onChange = nullptr;
    if (run) run->onEnd = nullptr;
}

void AppModel::begin() {
    refreshRecents();
    // Devices are looked up when they are to be used. What was used the last time is turned on anew, for
    // which the system may have to be asked.
    if (std::exchange(withMicrophone, false)) toggleMicrophone();
    if (std::exchange(withCamera, false)) toggleCamera();
    const auto look = [this] {
        parts.sources->askAllowed(whileAlive(this, [this](bool access, bool keys) {
            screenAccess = access;
            keysSeen = keys;
            Q_EMIT hasScreenAccessChanged();
            Q_EMIT seesKeysChanged();
        }));
        refreshDisplays();
        startLivePreview();
    };
    // The hot key first: whoever sees the displays may press it.
    if (parts.hotKey)
        parts.hotKey->grab(whileAlive(this, [this, look](const std::string& trouble) {
            hotKeyTrouble = Wording::translated(trouble);
            if (!trouble.empty()) setProblem(trouble);
            Q_EMIT hotKeyProblemChanged();
            look();
        }));
    else
        look();
    auto found = std::make_shared<std::vector<Recording>>();
    aside([library = parts.library, found] { *found = library.unfinished(); },
          [this, found] {
              for (const Recording& recording : *found)
                  unfinished.push_back(recording.folder);
              recoverNext();
          });
}

// What the main window shows.

AppModel::Screen AppModel::screen() const {
    switch (state) {
    case Flow::saving:
    case Flow::recovering:
    case Flow::loading:
        return Screen::working;
    case Flow::editing:
        return Screen::editor;
    default:
        return Screen::home;
    }
}

bool AppModel::starting() const {
    return state == Flow::resolving || state == Flow::counting || state == Flow::checking ||
           state == Flow::preparing;
}

void AppModel::enter(Flow next) {
    const Screen before = screen();
    state = next;
    Q_EMIT flowChanged();
    if (screen() != before) Q_EMIT screenChanged();
}

void AppModel::aside(std::function<void()> work, std::function<void()> done) {
    if (parts.aside) return parts.aside(std::move(work), whileAlive(this, std::move(done)));
    work();
    done();
}

void AppModel::setMessage(const QString& fresh) {
    if (fresh == message) return;
    message = fresh;
    Q_EMIT screenChanged();
}

void AppModel::setProblem(const std::string& description) {
    currentProblem = Wording::translated(description);
    Q_EMIT problemChanged();
}

void AppModel::dismissProblem() {
    setProblem({});
}

void AppModel::ask(QVariantMap question) {
    currentQuestion = std::move(question);
    Q_EMIT questionChanged();
}

void AppModel::remember(const char* name, const QVariant& value) {
    if (parts.settings) parts.settings->setValue(text(name), value);
}

bool AppModel::remembered(const char* name) const {
    return parts.settings && parts.settings->value(text(name)).toBool();
}

void AppModel::showMain() {
    parts.windows->show();
    const char* what = screen() == Screen::home ? "home" : screen() == Screen::working ? "working" : "editor";
    log(fmt::format("window: shown {}", what));
}

} // namespace OmbrelRecord
