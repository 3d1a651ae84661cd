#include "OmbrelRecord/AppModel/AppModel.h"
#include "OmbrelRecord/AppModel/AppModelParts.h"
#include "OmbrelRecord/AppModel/PlatformText.h"
#include "RecordCore/Capture/WindowList.h"

#include <algorithm>
#include <fmt/format.h>
#include <unistd.h>
#include <utility>

// What is recorded: displays, windows, and the pictures of them.

namespace OmbrelRecord {

using namespace RecordCore;
using namespace AppModelParts;

namespace {

constexpr double previewInterval = 1.2; ///< seconds
constexpr QSize sourceStillSize(320, 200);
const QString displayStill = QStringLiteral("display/");
const QString windowStill = QStringLiteral("window/");

} // namespace

// The source.

QString AppModel::displayName(const DisplayInfo& display) {
    return text(display.name.empty() ? fmt::format("Display {}", display.id) : display.name);
}

QString AppModel::windowName(const WindowInfo& window) {
    return text(RecordCore::windowName(window));
}

QString AppModel::targetName() const {
    if (chosenWindow != 0 && target) return windowName(*target);
    if (const DisplayInfo* display = withId(content.displays, chosenDisplay)) return displayName(*display);
    return tr("Choose a screen");
}

const DisplayInfo* AppModel::screen(const ScreenRect& frame) const {
    const double x = frame.x + frame.width / 2;
    const double y = frame.y + frame.height / 2;
    for (const DisplayInfo& display : content.displays) {
        const ScreenRect& area = display.frame;
        if (x >= area.x && x < area.x + area.width && y >= area.y && y < area.y + area.height)
            return &display;
    }
    return nullptr;
}

void AppModel::refreshDisplays() {
    parts.sources->list(whileAlive(this, [this](ShareableContent fresh) { take(std::move(fresh)); }));
}

void AppModel::take(ShareableContent fresh) {
    const bool changed = fresh.displays != content.displays || !listed;
    listed = true;
    content = std::move(fresh);
    if (!withId(content.displays, chosenDisplay))
        chosenDisplay = content.displays.empty() ? 0 : content.displays.front().id;
    if (const WindowInfo* window = withId(content.windows, chosenWindow)) target = *window;
    updateWindows(content.windows);
    if (!changed) return;
    Q_EMIT sourcesChanged();
    capturePreview();
}

void AppModel::updateWindows(const std::vector<WindowInfo>& shareable) {
    std::vector<WindowInfo> fresh = recordableWindows(shareable, getpid());
    const bool same = std::equal(
        fresh.begin(), fresh.end(), recordable.begin(), recordable.end(),
        [](const WindowInfo& a, const WindowInfo& b) { return a.id == b.id && a.title == b.title; });
    if (same) return; // a list that is being looked at is not drawn anew for nothing
    recordable = std::move(fresh);
    Q_EMIT sourcesChanged();
}

void AppModel::chooseDisplay(quint32 id) {
    chosenDisplay = id;
    chosenWindow = 0;
    target.reset();
    Q_EMIT sourcesChanged();
    capturePreview();
}

void AppModel::chooseWindow(quint32 id) {
    chosenWindow = id;
    if (const WindowInfo* window = withId(content.windows, id)) target = *window;
    Q_EMIT sourcesChanged();
    capturePreview();
}

void AppModel::requestScreenAccess() {
    parts.sources->requestAccess(whileAlive(this, [this](bool granted) {
        if (!granted && !parts.sources->openAccessSettings())
            setProblem(std::string(PlatformText::noScreenAccess));
        screenAccess = parts.sources->accessGranted();
        Q_EMIT hasScreenAccessChanged();
        refreshDisplays();
    }));
}

ScreenSource AppModel::source() const {
    if (chosenWindow != 0) return WindowSource{chosenWindow};
    return DisplaySource{chosenDisplay};
}

void AppModel::startLivePreview() {
    previewing = true;
    capturePreview();
}

void AppModel::stopLivePreview() {
    previewing = false;
    ++previewRun;
}

/// One still now, and the next ones from then on.
void AppModel::capturePreview() {
    if (previewing) previewAgain(++previewRun);
}

void AppModel::previewAgain(std::uint64_t wanted) {
    if (wanted != previewRun) return;
    const auto later = [this, wanted] {
        parts.clock->after(previewInterval, this, [this, wanted] { previewAgain(wanted); });
    };
    if (state != Flow::home || !screenAccess || content.displays.empty()) return later();
    parts.sources->still(source(), previewSize, whileAlive(this, [this, wanted, later](QImage still) {
                             if (wanted != previewRun) return;
                             if (state == Flow::home) {
                                 preview = std::move(still);
                                 ++previewRevision;
                                 Q_EMIT livePreviewChanged();
                             }
                             later();
                         }));
}

void AppModel::refreshSourceStills() {
    const bool idleNow = sourceStillsWanted.empty();
    sourceStillsWanted.clear();
    for (const WindowInfo& window : recordable)
        sourceStillsWanted.push_back(windowStill + QString::number(window.id));
    for (const DisplayInfo& display : content.displays)
        sourceStillsWanted.push_back(displayStill + QString::number(display.id));
    std::erase_if(sourceStills, [this](const auto& entry) {
        return std::ranges::find(sourceStillsWanted, entry.first) == sourceStillsWanted.end();
    });
    if (idleNow) nextSourceStill();
}

/// One at a time: a session with many windows is looked at without a moment's halt.
void AppModel::nextSourceStill() {
    if (sourceStillsWanted.empty()) return;
    const QString name = sourceStillsWanted.back();
    const quint32 id = name.mid(name.indexOf(QLatin1Char('/')) + 1).toUInt();
    const ScreenSource asked =
        name.startsWith(displayStill) ? ScreenSource(DisplaySource{id}) : ScreenSource(WindowSource{id});
    parts.sources->still(asked, sourceStillSize, whileAlive(this, [this, name](QImage still) {
                             if (!still.isNull()) sourceStills[name] = std::move(still);
                             ++sourceStillsCount;
                             Q_EMIT sourceStillsChanged();
                             std::erase(sourceStillsWanted, name);
                             nextSourceStill();
                         }));
}

QImage AppModel::image(const QString& name) const {
    if (name == QLatin1String("preview")) return preview;
    if (name == QLatin1String("camera")) return parts.cameras->picture();
    if (const auto known = sourceStills.find(name); known != sourceStills.end()) return known->second;
    const QLatin1String still("still/");
    return name.startsWith(still) ? recentList->still(name.mid(still.size())) : QImage();
}

QVariantList AppModel::displayList() const {
    QVariantList list;
    for (const DisplayInfo& display : content.displays)
        list.append(QVariantMap{{QStringLiteral("id"), display.id},
                                {QStringLiteral("name"), displayName(display)},
                                {QStringLiteral("main"), display.main},
                                {QStringLiteral("x"), display.frame.x},
                                {QStringLiteral("y"), display.frame.y},
                                {QStringLiteral("width"), display.frame.width},
                                {QStringLiteral("height"), display.frame.height}});
    return list;
}

QVariantList AppModel::windowList() const {
    QVariantList list;
    for (const WindowInfo& window : recordable)
        list.append(QVariantMap{{QStringLiteral("id"), window.id},
                                {QStringLiteral("name"), windowName(window)},
                                {QStringLiteral("application"), text(window.application)},
                                {QStringLiteral("title"), text(window.title)},
                                {QStringLiteral("width"), window.frame.width},
                                {QStringLiteral("height"), window.frame.height}});
    return list;
}

} // namespace OmbrelRecord
