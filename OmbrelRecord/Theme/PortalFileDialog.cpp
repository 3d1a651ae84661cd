#include "OmbrelRecord/Theme/PortalFileDialog.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QUrl>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>
#include <utility>

namespace OmbrelRecord {

/// One pattern of a filter as the portal writes it: (us), 0 for a glob.
struct FilterPattern {
    uint kind = 0;
    QString glob;
};

/// A filter: (sa(us)).
struct Filter {
    QString name;
    QList<FilterPattern> patterns;
};

// Found by Qt's meta types through the types' namespace.
static QDBusArgument& operator<<(QDBusArgument& to, const FilterPattern& pattern) {
    to.beginStructure();
    to << pattern.kind << pattern.glob;
    to.endStructure();
    return to;
}

static const QDBusArgument& operator>>(const QDBusArgument& from, FilterPattern& pattern) {
    from.beginStructure();
    from >> pattern.kind >> pattern.glob;
    from.endStructure();
    return from;
}

static QDBusArgument& operator<<(QDBusArgument& to, const Filter& filter) {
    to.beginStructure();
    to << filter.name << filter.patterns;
    to.endStructure();
    return to;
}

static const QDBusArgument& operator>>(const QDBusArgument& from, Filter& filter) {
    from.beginStructure();
    from >> filter.name >> filter.patterns;
    from.endStructure();
    return from;
}

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString objectPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString chooser = QStringLiteral("org.freedesktop.portal.FileChooser");
const QString requests = QStringLiteral("org.freedesktop.portal.Request");
/// A portal that has not even taken the question in after this long is as good as none, in milliseconds. One
/// that is not there says so at once; one that is being started takes a second or two.
constexpr int patience = 10000;

/// "Movies (*.mp4 *.mov)" as the portal wants it.
Filter parsed(const QString& filter) {
    const qsizetype open = filter.lastIndexOf(QLatin1Char('('));
    Filter made;
    made.name = filter.left(open).trimmed();
    const QString globs = open < 0 ? QString() : filter.mid(open + 1, filter.size() - open - 2);
    for (const QString& glob : globs.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        made.patterns.append({0, glob});
    return made;
}

/// The window that asks, so that the dialog stands over it.
QString parentWindow() {
    const QWindow* window = QGuiApplication::focusWindow();
    if (!window || QGuiApplication::platformName() != QLatin1String("xcb")) return {};
    return QStringLiteral("x11:%1").arg(window->winId(), 0, 16);
}

} // namespace

PortalFileDialog::~PortalFileDialog() {
    close();
}

void PortalFileDialog::ask(const QString& title, const QStringList& filters, bool save, const QString& name) {
    close();
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        Q_EMIT unavailable();
        return;
    }
    qDBusRegisterMetaType<FilterPattern>();
    qDBusRegisterMetaType<QList<FilterPattern>>();
    qDBusRegisterMetaType<Filter>();
    qDBusRegisterMetaType<QList<Filter>>();

    // The answer may come before the call returns: where it will come from is known beforehand.
    const QString token = QStringLiteral("ombrel%1").arg(QRandomGenerator::global()->generate());
    const QString sender = bus.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    follow(objectPath + QStringLiteral("/request/") + sender + QLatin1Char('/') + token);

    QList<Filter> wanted;
    for (const QString& filter : filters)
        wanted.append(parsed(filter));
    QVariantMap options{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("modal"), true},
                        {QStringLiteral("filters"), QVariant::fromValue(wanted)}};
    if (save) options.insert(QStringLiteral("current_name"), name);

    QDBusMessage call = QDBusMessage::createMethodCall(
        service, objectPath, chooser, save ? QStringLiteral("SaveFile") : QStringLiteral("OpenFile"));
    call << parentWindow() << title << options;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, patience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, question = ++asked] {
        watcher->deleteLater();
        if (question != asked || request.isEmpty()) return; // answered, or another was asked since
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (reply.isError())
            giveUp();
        else if (reply.value().path() != request)
            follow(reply.value().path()); // portals before 0.9 choose the path themselves
    });
}

void PortalFileDialog::follow(const QString& path) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    const char* slot = SLOT(answered(uint, QVariantMap));
    if (!request.isEmpty())
        bus.disconnect(service, request, requests, QStringLiteral("Response"), this, slot);
    request = path;
    if (!request.isEmpty()) bus.connect(service, request, requests, QStringLiteral("Response"), this, slot);
}

void PortalFileDialog::answered(uint response, const QVariantMap& results) {
    if (request.isEmpty()) return;
    follow({});
    const QStringList files = results.value(QStringLiteral("uris")).toStringList();
    if (response == 0 && !files.isEmpty())
        Q_EMIT chosen(QUrl(files.front()));
    else if (response == 2) // ended in some other way: the desktop has no such dialog after all
        Q_EMIT unavailable();
    else
        Q_EMIT cancelled();
}

void PortalFileDialog::giveUp() {
    close();
    Q_EMIT unavailable();
}

/// Takes the question back that has no answer yet.
void PortalFileDialog::close() {
    if (request.isEmpty()) return;
    QDBusConnection::sessionBus().asyncCall(
        QDBusMessage::createMethodCall(service, request, requests, QStringLiteral("Close")));
    follow({});
}

} // namespace OmbrelRecord
