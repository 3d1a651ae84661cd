#include "OmbrelRecord/EditorModel/ProjectFields.h"

#include <QtCore/QMetaType>
#include <QtCore/QRectF>
#include <array>
#include <cmath>
#include <type_traits>

namespace OmbrelRecord::ProjectFields {

using RecordCore::NRect;
using RecordCore::Project;

namespace {

QVariant toVariant(double value) {
    return value;
}
QVariant toVariant(bool value) {
    return value;
}
QVariant toVariant(const std::string& value) {
    return QString::fromStdString(value);
}
QVariant toVariant(const NRect& rect) {
    return QRectF(rect.x, rect.y, rect.w, rect.h);
}
template <typename T>
QVariant toVariant(const std::optional<T>& value) {
    return value ? toVariant(*value) : QVariant();
}

bool fromVariant(const QVariant& value, double& out) {
    const int type = value.typeId();
    if (type != QMetaType::Double && type != QMetaType::Int && type != QMetaType::Float) return false;
    if (!std::isfinite(value.toDouble())) return false;
    out = value.toDouble();
    return true;
}
bool fromVariant(const QVariant& value, bool& out) {
    if (value.typeId() != QMetaType::Bool) return false;
    out = value.toBool();
    return true;
}
bool fromVariant(const QVariant& value, std::string& out) {
    if (value.typeId() != QMetaType::QString) return false;
    out = value.toString().toStdString();
    return true;
}
bool fromVariant(const QVariant& value, NRect& out) {
    if (value.typeId() != QMetaType::QRectF) return false;
    const QRectF rect = value.toRectF();
    out = {rect.x(), rect.y(), rect.width(), rect.height()};
    return std::isfinite(rect.x() + rect.y() + rect.width() + rect.height());
}
template <typename T>
bool fromVariant(const QVariant& value, std::optional<T>& out) {
    if (!value.isValid() || value.isNull()) {
        out.reset();
        return true;
    }
    T read{};
    if (!fromVariant(value, read)) return false;
    out = std::move(read);
    return true;
}

struct Field {
    const char* name;
    QVariant (*read)(const Project&);
    bool (*write)(Project&, const QVariant&);
};

template <auto member>
constexpr Field field(const char* name) {
    return {name, [](const Project& project) { return toVariant(project.*member); },
            [](Project& project, const QVariant& value) {
                std::remove_reference_t<decltype(project.*member)> read{};
                if (!fromVariant(value, read)) return false;
                project.*member = std::move(read);
                return true;
            }};
}

#define OMBREL_FIELD(name) field<&Project::name>(#name)
constexpr std::array fields{
    OMBREL_FIELD(format),         OMBREL_FIELD(wallpaperPreset), OMBREL_FIELD(wallpaper),
    OMBREL_FIELD(solidColor),     OMBREL_FIELD(backdrop),        OMBREL_FIELD(backgroundBlur),
    OMBREL_FIELD(padding),        OMBREL_FIELD(radius),          OMBREL_FIELD(shadow),
    OMBREL_FIELD(cursorSize),     OMBREL_FIELD(cursorSmooth),    OMBREL_FIELD(hideIdleCursor),
    OMBREL_FIELD(cursorStyle),    OMBREL_FIELD(clickEffect),     OMBREL_FIELD(clickBounce),
    OMBREL_FIELD(cameraShow),     OMBREL_FIELD(cameraSize),      OMBREL_FIELD(cameraCorner),
    OMBREL_FIELD(cameraMirror),   OMBREL_FIELD(cameraShape),     OMBREL_FIELD(cameraBorder),
    OMBREL_FIELD(cameraMakeRoom), OMBREL_FIELD(showTitle),       OMBREL_FIELD(title),
    OMBREL_FIELD(subtitle),       OMBREL_FIELD(showEnd),         OMBREL_FIELD(endTitle),
    OMBREL_FIELD(endSubtitle),    OMBREL_FIELD(showClock),       OMBREL_FIELD(skipWaiting),
    OMBREL_FIELD(followAction),   OMBREL_FIELD(maxZoom),         OMBREL_FIELD(maxSpeed),
    OMBREL_FIELD(motion),         OMBREL_FIELD(showCaptions),    OMBREL_FIELD(captionStyle),
    OMBREL_FIELD(captionSize),    OMBREL_FIELD(captionBottom),   OMBREL_FIELD(crop),
    OMBREL_FIELD(trimStart),      OMBREL_FIELD(trimEnd)};
#undef OMBREL_FIELD

} // namespace

QVariantMap read(const Project& project) {
    QVariantMap map;
    for (const Field& field : fields)
        map.insert(QString::fromLatin1(field.name), field.read(project));
    return map;
}

bool write(Project& project, const QString& name, const QVariant& value) {
    for (const Field& field : fields)
        if (name == QLatin1String(field.name)) return field.write(project, value);
    return false;
}

} // namespace OmbrelRecord::ProjectFields
