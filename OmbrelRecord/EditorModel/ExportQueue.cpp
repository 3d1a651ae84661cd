#include "OmbrelRecord/EditorModel/ExportQueue.h"

#include "OmbrelRecord/AppModel/Wording.h"
#include "RecordCore/Export/Exporter.h"

#include <QtCore/QFileInfo>
#include <algorithm>
#include <cmath>
#include <system_error>

namespace OmbrelRecord {

using RecordCore::OutputFormat;

namespace {

constexpr double soundBits = 192'000; ///< of a second of sound

QString labelOf(const QString& format) {
    const auto shape = RecordCore::outputFormat(format.toStdString());
    if (!shape) return format;
    const std::string_view text = RecordCore::label(*shape);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

ExportQueue::ExportQueue(QObject* parent) : QObject(parent) {}

void ExportQueue::setEditor(EditorModel* editor) {
    if (model == editor) return;
    if (model) disconnect(model, nullptr, this, nullptr);
    model = editor;
    if (model) connect(model, &EditorModel::exportChanged, this, &ExportQueue::exportChanged);
    clear();
    Q_EMIT editorChanged();
}

QVariantList ExportQueue::films() const {
    QVariantList list;
    for (std::size_t i = 0; i < queue.size(); ++i) {
        const Film& film = queue[i];
        const bool working = film.state == QLatin1String("working");
        const bool done = film.state == QLatin1String("done");
        list.append(QVariantMap{{QStringLiteral("format"), film.format},
                                {QStringLiteral("label"), labelOf(film.format)},
                                {QStringLiteral("state"), film.state},
                                {QStringLiteral("progress"), done               ? 1.0
                                                             : working && model ? model->exportProgress()
                                                                                : 0.0},
                                {QStringLiteral("file"), QFileInfo(film.file).fileName()},
                                {QStringLiteral("folder"), QFileInfo(film.file).absolutePath()}});
    }
    return list;
}

double ExportQueue::progress() const {
    if (queue.empty()) return 0;
    if (now == State::Done) return 1;
    const double share = now == State::Working && model ? model->exportProgress() : 0;
    return (static_cast<double>(current) + share) / static_cast<double>(queue.size());
}

double ExportQueue::secondsLeft() const {
    const double share = progress();
    const double spent = clock.isValid() ? static_cast<double>(clock.elapsed()) / 1000 : 0;
    // The first moments tell nothing.
    if (now != State::Working || share < 0.01 || spent < 1) return -1;
    return spent / share * (1 - share);
}

QString ExportQueue::failure() const {
    return Wording::translated(problem);
}

void ExportQueue::start(const QStringList& formats, double filmScale, double framesPerSecond) {
    if (now == State::Working || !model || formats.isEmpty()) return;
    queue.clear();
    for (const QString& format : formats)
        queue.push_back({format, QStringLiteral("waiting"), {}});
    scale = filmScale;
    fps = framesPerSecond;
    current = 0;
    givingUp = false;
    problem.clear();
    now = State::Working;
    clock.start();
    next();
}

void ExportQueue::next() {
    queue[current].state = QStringLiteral("working");
    // Several films are shown in their folder once, when the last of them is there.
    model->revealsExported = current + 1 == queue.size();
    model->exportFilm(queue[current].format, scale, false, fps);
    Q_EMIT changed();
}

void ExportQueue::exportChanged() {
    if (now != State::Working) return;
    switch (model->exportState()) {
    case EditorModel::ExportState::working:
        break;
    case EditorModel::ExportState::done:
        queue[current].state = QStringLiteral("done");
        queue[current].file = QString::fromStdString(model->exportedFile().string());
        if (current + 1 == queue.size()) return finish(State::Done);
        ++current;
        if (givingUp) return finish(State::Idle);
        // The model is in the middle of telling everybody; the next film begins afterwards.
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (now == State::Working) next();
            },
            Qt::QueuedConnection);
        break;
    case EditorModel::ExportState::failed:
        queue[current].state = QStringLiteral("failed");
        problem = model->exportFailure();
        return finish(State::Failed);
    case EditorModel::ExportState::idle:
        if (givingUp) return finish(State::Idle);
        break;
    }
    Q_EMIT changed();
}

void ExportQueue::finish(State state) {
    now = state;
    givingUp = false;
    model->revealsExported = true;
    if (now == State::Idle) queue.clear();
    Q_EMIT changed();
}

void ExportQueue::cancel() {
    if (now != State::Working || givingUp) return;
    givingUp = true;
    if (model) model->cancelExport();
    Q_EMIT changed();
}

void ExportQueue::clear() {
    if (now == State::Working)
        cancel();
    else {
        now = State::Idle;
        queue.clear();
        problem.clear();
        Q_EMIT changed();
    }
}

void ExportQueue::reveal() {
    if (model) model->revealExported();
}

void ExportQueue::copy() {
    if (model) model->copyExported();
}

QUrl ExportQueue::url(int film) const {
    if (film < 0 || static_cast<std::size_t>(film) >= queue.size()) return {};
    return QUrl::fromLocalFile(queue[static_cast<std::size_t>(film)].file);
}

double ExportQueue::expectedBytes(const QStringList& formats, double filmScale,
                                  double framesPerSecond) const {
    if (!model) return 0;
    double bits = 0;
    for (const QString& format : formats) {
        const auto shape = RecordCore::outputFormat(format.toStdString());
        if (!shape) continue;
        const RecordCore::Size size = RecordCore::canvas(*shape);
        const auto pixels = [filmScale](double length) {
            return static_cast<int>(std::lround(length * filmScale));
        };
        bits += static_cast<double>(
            RecordCore::Exporter::defaultBitrate(pixels(size.width), pixels(size.height), framesPerSecond));
        if (model->hasSound()) bits += soundBits;
    }
    return bits / 8 * model->outputDuration();
}

QString ExportQueue::adviceFor(const QString& failure) {
    if (failure.isEmpty()) return {};
    const auto says = [&failure](const char* text) {
        return failure.contains(QString::fromUtf8(text), Qt::CaseInsensitive);
    };
    // The system says its part in the user's language where it knows it.
    const auto causedBy = [&says](std::errc cause) {
        return says(std::make_error_code(cause).message().c_str());
    };
    if (says("no space") || says("disk full") || causedBy(std::errc::no_space_on_device))
        return tr("The disk is full. Free some space, then export again.");
    if (says("permission denied") || says("read-only") || causedBy(std::errc::permission_denied) ||
        causedBy(std::errc::read_only_file_system))
        return tr(
            "The folder for films can't be written. Check that you may write there, then export again.");
    if (says("no such file") || causedBy(std::errc::no_such_file_or_directory))
        return tr("A file of the recording is missing. Put it back into the recording's folder, then export "
                  "again.");
    if (says("empty") || says("no frames"))
        return tr("Nothing is left to export. Restore a cut or move the trim handles, then export again.");
    return tr("Your edits are safe. Try again; if it fails again, choose another format or scale.");
}

} // namespace OmbrelRecord
