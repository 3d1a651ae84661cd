#pragma once

#include <QtCore/QString>
#include <QtNetwork/QLocalServer>

namespace OmbrelRecord {

/// For tests that use the application from outside: whoever connects to a socket is told as JSON what its
/// windows show (`ItemTree`), what has held up its main thread since the last time ("stalls") and how
/// many "keys" and "buttons" it has heard (of a `StallWatch`). It tells and takes nothing. Main thread.
class Inspection {
public:
    /// The socket's path, which the environment variable OMBREL_INSPECT names; empty: nobody asks.
    static QString wanted();

    explicit Inspection(const QString& socket);

private:
    QLocalServer server;
};

} // namespace OmbrelRecord
