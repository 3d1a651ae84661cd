#include "OmbrelRecord/AppModel/AppModel.h"
#include "OmbrelRecord/AppModel/AppModelParts.h"
#include "OmbrelRecord/AppModel/PlatformText.h"

#include <fmt/format.h>
#include <utility>

// What is recorded with the picture: sound, microphone, camera, keys.

namespace OmbrelRecord {

using namespace RecordCore;
using namespace AppModelParts;

namespace {

constexpr int mostKeyPolls = 60;
constexpr double keyPollInterval = 1; ///< seconds

QVariantMap device(const std::string& id, const std::string& name) {
    return {{QStringLiteral("id"), text(id)}, {QStringLiteral("name"), text(name)}};
}

} // namespace

// What is recorded with it.

void AppModel::setSystemAudio(bool on) {
    if (on == withSystemAudio) return;
    withSystemAudio = on;
    remember(Settings::systemAudio, on);
    Q_EMIT systemAudioChanged();
}

void AppModel::toggleMicrophone() {
    if (withMicrophone) {
        withMicrophone = false;
        remember(Settings::microphone, false);
        mics.stopMeter();
        Q_EMIT microphoneChanged();
        return;
    }
    parts.permissions->requestMicrophone(whileAlive(this, [this](bool granted) {
        if (!granted)
            return setProblem(fmt::format("Ombrel Record can't use the microphone. Turn it on in {}.",
                                          PlatformText::microphoneSettings));
        withMicrophone = true;
        remember(Settings::microphone, true);
        refreshMicrophones();
        if (state == Flow::home) mics.startMeter();
        Q_EMIT microphoneChanged();
    }));
}

QString AppModel::microphoneID() const {
    return text(mics.selectedID().value_or(""));
}

void AppModel::chooseMicrophone(const QString& id) {
    mics.select(id.isEmpty() ? std::nullopt : std::optional(id.toStdString()));
    remember(Settings::microphoneID, id);
    refreshMicrophones();
}

void AppModel::refreshMicrophones() {
    mics.refresh();
    const std::optional<Microphones::Device> active = mics.active();
    activeName = active ? text(active->name) : QString();
    Q_EMIT microphonesChanged();
}

void AppModel::toggleCamera() {
    if (withCamera) {
        withCamera = false;
        remember(Settings::camera, false);
        parts.cameras->stopPreview();
        cameraCount = 0;
        cameraProblem.clear();
        Q_EMIT cameraChanged();
        Q_EMIT cameraPictureChanged();
        return;
    }
    parts.permissions->requestCamera(whileAlive(this, [this](bool granted) {
        if (!granted)
            return setProblem(fmt::format("Ombrel Record can't use the camera. Turn it on in {}.",
                                          PlatformText::cameraSettings));
        withCamera = true;
        remember(Settings::camera, true);
        refreshCameras();
        if (state == Flow::home) parts.cameras->startPreview(chosenCamera.toStdString());
        Q_EMIT cameraChanged();
    }));
}

void AppModel::chooseCamera(const QString& id) {
    chosenCamera = id;
    remember(Settings::cameraID, id);
    if (withCamera && state == Flow::home) parts.cameras->startPreview(id.toStdString());
    Q_EMIT camerasChanged();
}

void AppModel::refreshCameras() {
    parts.cameras->list(whileAlive(this, [this](std::vector<Cameras::Device> devices) {
        cameraDevices = std::move(devices);
        Q_EMIT camerasChanged();
    }));
}

void AppModel::startPreviews() {
    if (withCamera) parts.cameras->startPreview(chosenCamera.toStdString());
    if (withMicrophone) mics.startMeter();
}

void AppModel::stopPreviews() {
    mics.stopMeter();
    parts.cameras->stopPreview();
    cameraCount = 0;
    Q_EMIT cameraPictureChanged();
}

void AppModel::requestKeys() {
    parts.sources->requestKeys();
    pollKeys(0);
}

void AppModel::pollKeys(int polls) {
    const bool seen = parts.sources->seesKeys();
    if (seen != keysSeen) {
        keysSeen = seen;
        Q_EMIT seesKeysChanged();
    }
    if (seen || polls >= mostKeyPolls) return;
    parts.clock->after(keyPollInterval, this, [this, polls] { pollKeys(polls + 1); });
}

QVariantList AppModel::microphoneList() const {
    QVariantList list;
    for (const Microphones::Device& microphone : mics.devices())
        list.append(device(microphone.id, microphone.name));
    return list;
}

QVariantList AppModel::cameraList() const {
    QVariantList list;
    for (const Cameras::Device& camera : cameraDevices)
        list.append(device(camera.id, camera.name));
    return list;
}

} // namespace OmbrelRecord
