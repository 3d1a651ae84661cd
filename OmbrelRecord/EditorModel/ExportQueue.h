#pragma once

#include "OmbrelRecord/EditorModel/EditorModel.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtCore/QVariant>
#include <vector>

namespace OmbrelRecord {

/// Exports one recording in several formats, one after the other, and tells how far that is. Main thread.
class ExportQueue : public QObject {
    Q_OBJECT
    Q_PROPERTY(OmbrelRecord::EditorModel* editor READ editor WRITE setEditor NOTIFY editorChanged)
    Q_PROPERTY(QVariantList films READ films NOTIFY changed)
    Q_PROPERTY(State state READ state NOTIFY changed)
    Q_PROPERTY(bool cancelling READ cancelling NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY changed)
    Q_PROPERTY(double secondsLeft READ secondsLeft NOTIFY changed)
    Q_PROPERTY(QString failure READ failure NOTIFY changed)
    Q_PROPERTY(QString advice READ advice NOTIFY changed)

public:
    enum class State { Idle, Working, Done, Failed };
    Q_ENUM(State)

    explicit ExportQueue(QObject* parent = nullptr);

    EditorModel* editor() const { return model; }
    void setEditor(EditorModel* editor);

    /// The films asked for last: {format, label, state ("waiting", "working", "done", "failed"), progress,
    /// file, folder}.
    QVariantList films() const;
    State state() const { return now; }
    bool cancelling() const { return givingUp; }
    double progress() const; ///< of all films, 0…1
    /// −1 while it cannot be told yet.
    double secondsLeft() const;
    /// Why it stopped, as the engine says it, and what to do about it.
    QString failure() const;
    QString advice() const { return adviceFor(problem); }

    /// Ignored while it works.
    Q_INVOKABLE void start(const QStringList& formats, double scale, double fps);
    /// Films that are finished stay.
    Q_INVOKABLE void cancel();
    /// Back to choosing.
    Q_INVOKABLE void clear();
    Q_INVOKABLE void reveal();
    Q_INVOKABLE void copy();
    Q_INVOKABLE QUrl url(int film) const;

    /// Bytes that films of these formats take where something moves all the time, as long as the film is now:
    /// what is aimed at, and kept to a few hundredths.
    Q_INVOKABLE double expectedBytes(const QStringList& formats, double scale, double fps) const;

    static QString adviceFor(const QString& failure);

Q_SIGNALS:
    void editorChanged();
    void changed();

private:
    struct Film {
        QString format;
        QString state = QStringLiteral("waiting");
        QString file;
    };

    void next();
    void exportChanged();
    void finish(State state);

    QPointer<EditorModel> model;
    std::vector<Film> queue;
    std::size_t current = 0;
    State now = State::Idle;
    bool givingUp = false;
    double scale = 1;
    double fps = 60;
    QString problem;
    QElapsedTimer clock;
};

} // namespace OmbrelRecord
