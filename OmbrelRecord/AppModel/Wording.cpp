#include "OmbrelRecord/AppModel/Wording.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QHash>
#include <QtCore/QRegularExpression>
#include <utility>
#include <vector>

namespace OmbrelRecord {

namespace {

/// What may come to be read in the windows. "%1" stands for something that differs.
constexpr const char* known[] = {
    QT_TRANSLATE_NOOP(
        "OmbrelRecord::Wording",
        "Ombrel Record can't use the microphone. Turn it on in Settings → Privacy → Microphone."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "Ombrel Record can't use the camera. Turn it on in Settings → Privacy → Camera."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "Ombrel Record can't see this screen. Log in to a desktop session, allow screen "
                      "recording when it asks, and try again."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Super+Alt+R belongs to another program, so it doesn't start "
                                               "a recording here. Use the Record button."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "Super+Alt+R doesn't work in a Wayland session yet. Use the Record button."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Super+Alt+R doesn't work here (%1). Use the Record button."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Couldn't open that video"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "there is no folder for the sample, because your home folder isn't known."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "The camera couldn't start, so this recording has no camera"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "Ombrel Record needs Speech Recognition. Allow it in your desktop's privacy settings."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "Speech recognition isn't available for this language on this computer."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Couldn't read the recording's sound."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Couldn't prepare the sound for captions."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "This recording has no sound. Turn on Mic before recording to get captions."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "No speech found. Record with Mic on to get captions."),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Your changes couldn't be saved"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "cannot be written"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "cannot be read"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "cannot be created"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "couldn't be moved to the trash"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "no such folder"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "there is no recording here"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "holds a recording already"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "another recording is running there"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "still being recorded"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the disk is full"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "not a plain file"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "not a regular file"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "not a recording of this program"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "is not valid JSON (at byte %1)"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "has no list of looks"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "nothing can be recovered"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the file has no header"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "not a video that can be read"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the file is empty"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the file has no video"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the file is cut off"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the file is cut off: it holds %1 bytes of at least %2"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the picture is too large (%1)"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the picture has no size"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "it has no length"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "it holds no pictures"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the video has no length"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the video has no frames"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the video is in a format that cannot be read (%1)"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "the video claims to be longer than 100 hours; it is probably damaged"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "no picture of the video can be decoded"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the sound is in a format that cannot be read (%1)"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording",
                      "the sound claims to be longer than 100 hours; it is probably damaged"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "no display to record"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "there is no display %1"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "there is no window %1"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "window %1 is too small to be recorded"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the X server does not answer any more"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "no frames were captured"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "no camera"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "camera busy"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "camera output"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the camera is gone"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "there is no sound service"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "no connection to the sound service"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "recording stopped"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the H.264 encoder failed"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "the film would be empty: everything has been cut"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "append failed at frame %1"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "unknown error"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "No space left on device"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Permission denied"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Operation not permitted"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Read-only file system"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "No such file or directory"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Not a directory"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Is a directory"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "File exists"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "File too large"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "File name too long"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Disk quota exceeded"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Input/output error"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Too many open files"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Cannot allocate memory"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "Invalid data found when processing input"),
    QT_TRANSLATE_NOOP("OmbrelRecord::Wording", "End of file"),
};

/// The known texts that hold something that differs, as patterns.
const std::vector<std::pair<QRegularExpression, const char*>>& patterns() {
    static const auto made = [] {
        std::vector<std::pair<QRegularExpression, const char*>> list;
        for (const char* text : known) {
            QString pattern = QRegularExpression::escape(QString::fromUtf8(text));
            static const QRegularExpression place(QStringLiteral("\\\\%[1-9]"));
            if (!pattern.contains(place)) continue;
            pattern.replace(place, QStringLiteral("(.+)"));
            list.emplace_back(QRegularExpression::anchoredPattern(pattern), text);
        }
        return list;
    }();
    return made;
}

const QHash<QString, const char*>& sentences() {
    static const auto made = [] {
        QHash<QString, const char*> all;
        for (const char* text : known)
            all.insert(QString::fromUtf8(text), text);
        return all;
    }();
    return made;
}

QString inOurLanguage(const char* text) {
    return QCoreApplication::translate("OmbrelRecord::Wording", text);
}

} // namespace

QString Wording::translated(const QString& message) {
    if (const char* text = sentences().value(message)) return inOurLanguage(text);
    for (const auto& [pattern, text] : patterns()) {
        const QRegularExpressionMatch match = pattern.match(message);
        if (!match.hasMatch()) continue;
        QString said = inOurLanguage(text);
        for (int i = 1; i <= match.lastCapturedIndex(); ++i)
            said.replace(QStringLiteral("%%1").arg(i), translated(match.captured(i)));
        return said;
    }
    const auto end = message.indexOf(QLatin1String(": "));
    if (end < 0) return message;
    return translated(message.left(end)) + QLatin1String(": ") + translated(message.mid(end + 2));
}

QString Wording::translated(std::string_view message) {
    return translated(QString::fromUtf8(message.data(), static_cast<qsizetype>(message.size())));
}

} // namespace OmbrelRecord
