#pragma once

#include "OmbrelRecord/Updates/UpdateFeed.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QUrl>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

class QNetworkAccessManager;

namespace OmbrelRecord {

/// Whether there is a later release. It tells of one and where to get it; installing is left to the system's
/// packages. The feed is believed only when its signature (base64, in a file of the same name with ".sig"
/// added) was made with the key this build knows. Main thread.
class Updates : public QObject {
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY changed)
    Q_PROPERTY(QString version READ version NOTIFY changed)
    Q_PROPERTY(QString notes READ notes NOTIFY changed)
    Q_PROPERTY(QUrl page READ page NOTIFY changed)
    /// Why it could not be found out; empty otherwise.
    Q_PROPERTY(QString failure READ failure NOTIFY changed)

public:
    enum class State {
        off,  ///< this build asks nobody: its updates come with the system's
        idle, ///< not asked yet
        checking,
        current,   ///< there is nothing later
        available, ///< `version` is later
        failed
    };
    Q_ENUM(State)

    struct Source {
        QUrl feed;           ///< an https page or a file; empty: off
        std::string key;     ///< the public key, 32 bytes; empty: off
        std::string version; ///< of this program
        /// What this build was made with.
        static Source ofBuild();
    };

    /// Whether these bytes bear that signature by that key, as `isSigned` of Signature.h tells. Throws
    /// RecordingError when it cannot be told.
    using Verify =
        std::function<bool(std::string_view bytes, std::string_view signature, std::string_view key)>;

    Updates(Source source, Verify verify, QObject* parent = nullptr);

    ~Updates() override;

    State state() const { return now; }
    QString version() const { return QString::fromStdString(release.version); }
    QString notes() const { return QString::fromStdString(release.notes); }
    QUrl page() const { return QUrl(QString::fromStdString(release.url)); }
    QString failure() const { return problem; }

    /// Asks the feed, unless that goes on already.
    Q_INVOKABLE void check();

Q_SIGNALS:
    void changed();

private:
    void fetch(const QUrl& url, void (Updates::*then)(const QByteArray&));
    void gotFeed(const QByteArray& bytes);
    void gotSignature(const QByteArray& bytes);
    void fail(const QString& description);
    void enter(State state);

    Source source;
    Verify verify;
    std::unique_ptr<QNetworkAccessManager> network; ///< made when something is fetched
    State now;
    QByteArray feed;
    Release release;
    QString problem;
};

} // namespace OmbrelRecord
