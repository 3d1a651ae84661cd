#include "OmbrelRecord/Updates/Updates.h"

#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QNetworkRequest>
#include <exception>
#include <utility>

namespace OmbrelRecord {

namespace {

constexpr int patience = 20'000;       ///< milliseconds
constexpr qint64 longestFeed = 65'536; ///< bytes

} // namespace

Updates::Source Updates::Source::ofBuild() {
    return {QUrl(QStringLiteral(OMBREL_UPDATE_FEED)), fromBase64(OMBREL_UPDATE_KEY), OMBREL_VERSION};
}

Updates::Updates(Source from, Verify with, QObject* parent) :
    QObject(parent), source(std::move(from)), verify(std::move(with)),
    now(source.feed.isEmpty() || source.key.empty() ? State::off : State::idle) {}

Updates::~Updates() = default;

void Updates::check() {
    if (now == State::off || now == State::checking) return;
    enter(State::checking);
    fetch(source.feed, &Updates::gotFeed);
}

void Updates::fetch(const QUrl& url, void (Updates::*then)(const QByteArray&)) {
    if (!url.isLocalFile() && url.scheme() != QLatin1String("https"))
        return fail(QStringLiteral("%1 is neither https nor a file").arg(url.toString()));
    QNetworkRequest request(url);
    request.setTransferTimeout(patience);
    if (!network) network = std::make_unique<QNetworkAccessManager>();
    QNetworkReply* reply = network->get(request);
    connect(reply, &QNetworkReply::downloadProgress, this, [reply](qint64 received, qint64) {
        if (received > longestFeed) reply->abort();
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply, then] {
        reply->deleteLater();
        if (reply->error() != QNetworkReply::NoError) return fail(reply->errorString());
        const QByteArray bytes = reply->readAll();
        if (bytes.size() > longestFeed) return fail(QStringLiteral("the update feed is too long"));
        (this->*then)(bytes);
    });
}

void Updates::gotFeed(const QByteArray& bytes) {
    feed = bytes;
    QUrl signature = source.feed;
    signature.setPath(signature.path() + QStringLiteral(".sig"));
    fetch(signature, &Updates::gotSignature);
}

void Updates::gotSignature(const QByteArray& bytes) {
    const std::string text = feed.toStdString();
    try {
        if (!verify(text, fromBase64(bytes.toStdString()), source.key))
            return fail(QStringLiteral("the update feed is not signed by the makers of this program"));
        release = Release::read(text);
    } catch (const std::exception& error) {
        return fail(QString::fromUtf8(error.what()));
    }
    enter(isNewer(release.version, source.version) ? State::available : State::current);
}

void Updates::fail(const QString& description) {
    problem = description;
    now = State::failed;
    Q_EMIT changed();
}

void Updates::enter(State state) {
    problem.clear();
    now = state;
    Q_EMIT changed();
}

} // namespace OmbrelRecord
