#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtNetwork/QLocalServer>

namespace OmbrelRecord {

/// One windowed application for each user's session: a second one asks the first to come to the front and
/// ends. Where no socket can be had every start is the first. Main thread.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    /// `place`: the socket's path; the standard one is a file in the user's runtime folder.
    explicit SingleInstance(QString place = standardPlace(), QObject* parent = nullptr);

    static QString standardPlace();

    /// True when this is the first; false when there was one and it has been told. Waits for at most a second
    /// for one that does not answer.
    bool claim();

Q_SIGNALS:
    /// Somebody started the application again.
    void startedAgain();

private:
    bool tellOther();

    QString place;
    QLocalServer server;
};

} // namespace OmbrelRecord
