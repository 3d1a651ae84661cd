#pragma once

#include "OmbrelRecord/Theme/ColorScheme.h"

#include <QtCore/QObject>
#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtQml/qqmlregistration.h>

namespace OmbrelRecord {

/// The measures and colours of the interface, for QML as the singleton `Theme`. Colours follow the desktop's
/// scheme unless one is asked for. Text stands at least 4.5 : 1 from its ground, parts of controls 3 : 1.
/// Main thread.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(Scheme scheme READ scheme WRITE setScheme NOTIFY changed)
    Q_PROPERTY(bool dark READ dark NOTIFY changed)

    // Grounds, from the back to the front.
    Q_PROPERTY(QColor background READ background NOTIFY changed)
    Q_PROPERTY(QColor surface READ surface NOTIFY changed)
    Q_PROPERTY(QColor raised READ raised NOTIFY changed)
    /// The ground of fields and tracks, sunk into a surface.
    Q_PROPERTY(QColor sunken READ sunken NOTIFY changed)
    /// Laid over a ground that the pointer is over, that is pressed, or that is chosen.
    Q_PROPERTY(QColor hovered READ hovered NOTIFY changed)
    Q_PROPERTY(QColor pressed READ pressed NOTIFY changed)
    Q_PROPERTY(QColor chosen READ chosen NOTIFY changed)
    /// Hairlines between surfaces; and the outlines that tell a control, which need more contrast.
    Q_PROPERTY(QColor line READ line NOTIFY changed)
    Q_PROPERTY(QColor outline READ outline NOTIFY changed)
    Q_PROPERTY(QColor text READ text NOTIFY changed)
    Q_PROPERTY(QColor secondary READ secondary NOTIFY changed)
    Q_PROPERTY(QColor disabled READ disabled NOTIFY changed)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed)
    /// The accent as text, and as a ground under white text.
    Q_PROPERTY(QColor accentText READ accentText NOTIFY changed)
    Q_PROPERTY(QColor accentFill READ accentFill CONSTANT)
    Q_PROPERTY(QColor onFill READ onFill CONSTANT)
    Q_PROPERTY(QColor record READ record CONSTANT)
    Q_PROPERTY(QColor recordFill READ recordFill CONSTANT)
    Q_PROPERTY(QColor warning READ warning NOTIFY changed)
    Q_PROPERTY(QColor good READ good NOTIFY changed)
    // What the timeline shows.
    Q_PROPERTY(QColor speed READ speed CONSTANT)
    Q_PROPERTY(QColor zoom READ zoom CONSTANT)
    Q_PROPERTY(QColor cut READ cut CONSTANT)
    /// Under what floats, and over what waits for a dialog.
    Q_PROPERTY(QColor shadow READ shadow NOTIFY changed)
    Q_PROPERTY(QColor scrim READ scrim CONSTANT)
    /// Over pictures, whatever the scheme; text on it is `onFill`.
    Q_PROPERTY(QColor overPicture READ overPicture CONSTANT)

    // Spacing: 4, 8, 12, 16, 24, 32.
    Q_PROPERTY(int xs READ xs CONSTANT)
    Q_PROPERTY(int s READ s CONSTANT)
    Q_PROPERTY(int m READ m CONSTANT)
    Q_PROPERTY(int l READ l CONSTANT)
    Q_PROPERTY(int xl READ xl CONSTANT)
    Q_PROPERTY(int xxl READ xxl CONSTANT)
    // Radii: 8, 12, 16.
    Q_PROPERTY(int radiusS READ radiusS CONSTANT)
    Q_PROPERTY(int radiusM READ radiusM CONSTANT)
    Q_PROPERTY(int radiusL READ radiusL CONSTANT)
    // Heights of controls: 28, 36, 48.
    Q_PROPERTY(int small READ small CONSTANT)
    Q_PROPERTY(int control READ control CONSTANT)
    Q_PROPERTY(int large READ large CONSTANT)
    // Type, in pixels: 12, 13, 15, 20, 28.
    Q_PROPERTY(QString family READ family CONSTANT)
    Q_PROPERTY(QFont tiny READ tiny CONSTANT)
    Q_PROPERTY(QFont body READ body CONSTANT)
    Q_PROPERTY(QFont strong READ strong CONSTANT)
    Q_PROPERTY(QFont lead READ lead CONSTANT)
    Q_PROPERTY(QFont title READ title CONSTANT)
    Q_PROPERTY(QFont display READ display CONSTANT)
    // Motion, in milliseconds; 0 where the desktop asks for less of it.
    Q_PROPERTY(int quick READ quick NOTIFY changed)
    Q_PROPERTY(int gentle READ gentle NOTIFY changed)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed)

public:
    enum class Scheme { desktop, light, dark };
    Q_ENUM(Scheme)

    explicit Theme(QObject* parent = nullptr);

    Scheme scheme() const { return asked; }
    void setScheme(Scheme scheme);
    bool dark() const;

    QColor background() const { return pick(0x0E0F13, 0xF5F6F8); }
    QColor surface() const { return pick(0x16181E, 0xFFFFFF); }
    QColor raised() const { return pick(0x1E2129, 0xFFFFFF); }
    QColor sunken() const { return pick(0x0E0F13, 0xEDEFF3); }
    QColor hovered() const { return dark() ? QColor(255, 255, 255, 16) : QColor(15, 20, 40, 12); }
    QColor pressed() const { return dark() ? QColor(255, 255, 255, 30) : QColor(15, 20, 40, 24); }
    QColor chosen() const { return dark() ? QColor(108, 123, 255, 46) : QColor(85, 99, 240, 28); }
    QColor line() const { return pick(0x2A2E38, 0xDFE2E8); }
    QColor outline() const { return pick(0x6A7180, 0x7F8695); }
    QColor text() const { return pick(0xECEEF3, 0x14161B); }
    QColor secondary() const { return pick(0x9AA1AF, 0x5B6270); }
    QColor disabled() const { return pick(0x5A606D, 0xA6ACB8); }
    QColor accent() const { return 0x6C7BFF; }
    QColor accentText() const { return pick(0x98A3FF, 0x4450D6); }
    QColor accentFill() const { return 0x5563F0; }
    QColor onFill() const { return 0xFFFFFF; }
    QColor record() const { return 0xFF4D4F; }
    QColor recordFill() const { return 0xDB3436; }
    QColor warning() const { return pick(0xF5A524, 0x9A5B00); }
    QColor good() const { return pick(0x4CC38A, 0x18794E); }
    QColor speed() const { return 0xF5A524; }
    QColor zoom() const { return 0x6C7BFF; }
    QColor cut() const { return 0xFF5C7A; }
    QColor shadow() const { return dark() ? QColor(0, 0, 0, 150) : QColor(20, 24, 40, 46); }
    QColor scrim() const { return {6, 7, 10, 150}; }
    QColor overPicture() const { return {14, 15, 19, 200}; }

    int xs() const { return 4; }
    int s() const { return 8; }
    int m() const { return 12; }
    int l() const { return 16; }
    int xl() const { return 24; }
    int xxl() const { return 32; }
    int radiusS() const { return 8; }
    int radiusM() const { return 12; }
    int radiusL() const { return 16; }
    int small() const { return 28; }
    int control() const { return 36; }
    int large() const { return 48; }

    QString family() const;
    QFont tiny() const { return font(12, QFont::Medium); }
    QFont body() const { return font(13, QFont::Medium); }
    QFont strong() const { return font(13, QFont::DemiBold); }
    QFont lead() const { return font(15, QFont::DemiBold); }
    QFont title() const { return font(20, QFont::Bold); }
    QFont display() const { return font(28, QFont::Bold); }

    int quick() const { return reducedMotion() ? 0 : 120; }
    int gentle() const { return reducedMotion() ? 0 : 200; }
    bool reducedMotion() const { return desktop.reducedMotion(); }

    /// Makes the fonts that the application brings along known to Qt; once, before the first text.
    static void loadFonts();

Q_SIGNALS:
    void changed();

private:
    QColor pick(QRgb ofDark, QRgb ofLight) const { return QColor(dark() ? ofDark : ofLight); }
    QFont font(int pixels, QFont::Weight weight) const;

    ColorScheme desktop;
    Scheme asked = Scheme::desktop;
};

} // namespace OmbrelRecord
