#pragma once

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>
#include <QtQml/qqmlregistration.h>

class QDBusMessage;

namespace OmbrelRecord {

/// Asks for a file with the desktop's own dialog, whatever the desktop, through its portal
/// (org.freedesktop.portal.FileChooser). Never blocks. Where no portal answers, `unavailable` says so, and
/// another dialog is to be shown. Main thread.
class PortalFileDialog : public QObject {
    Q_OBJECT
    QML_ELEMENT

public:
    using QObject::QObject;
    ~PortalFileDialog() override;

    /// `filters` as "Movies (*.mp4 *.mov)". `name`: what to call a file that is saved; nothing to open one. A
    /// question asked before that has no answer yet is taken back.
    Q_INVOKABLE void ask(const QString& title, const QStringList& filters, bool save, const QString& name);

Q_SIGNALS:
    void chosen(const QUrl& file);
    void cancelled();
    void unavailable();

private Q_SLOTS:
    void answered(uint response, const QVariantMap& results);

private:
    void follow(const QString& path);
    void close();
    void giveUp();

    QString request; ///< path of the question that waits for its answer
    int asked = 0;
};

} // namespace OmbrelRecord
