#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtNetwork/QLocalServer>

namespace OmbrelRecord {

/// One windowed application for each user's session: a second one asks the first to come to the front, with
/// the file that it was to open, and ends. Where no socket can be had every start is the first. Main thread.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    /// `place`: the socket's path; the standard one is a file in the user's runtime folder.
    explicit SingleInstance(QString place = standardPlace(), QObject* parent = nullptr);

    static QString standardPlace();

    /// True when this is the first; false when there was one and it has been told, also of `file`. Waits for
    /// at most a second for one that does not answer.
    bool claim(const QString& file = {});

Q_SIGNALS:
    /// Somebody started the application again; `file` is empty where none was named.
    void startedAgain(const QString& file);

private:
    bool tellOther(const QString& file);

    QString place;
    QLocalServer server;
};

} // namespace OmbrelRecord
