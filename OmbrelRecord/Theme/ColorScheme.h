#pragma once

#include <QtCore/QObject>
#include <QtCore/QVariant>
#include <QtDBus/QDBusVariant>

namespace OmbrelRecord {

/// What the desktop prefers: a dark or a light interface, and whether things may move. The settings portal is
/// asked first; where there is none the palette decides. Never blocks: until the answer comes, the palette's
/// holds. Main thread.
class ColorScheme : public QObject {
    Q_OBJECT

public:
    explicit ColorScheme(QObject* parent = nullptr);

    bool dark() const;
    bool reducedMotion() const { return withoutMotion; }

Q_SIGNALS:
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void take(const QString& group, const QString& key, QVariant value);
    void ask(const QString& group, const QString& key);

    enum class Preference { none, dark, light };
    Preference preference = Preference::none;
    bool withoutMotion = false;
};

} // namespace OmbrelRecord
