#pragma once

#include "RecordCore/Model/Project.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace OmbrelRecord {

/// A project's plain fields by name, for views to bind to. Lists (captions, cuts, blocks) are not among them.
namespace ProjectFields {

/// All fields; those that are absent are invalid variants.
QVariantMap read(const RecordCore::Project& project);

/// Sets one field. An invalid variant makes an optional field absent. False when there is no such field or
/// the value is not of its type; the project is then unchanged.
bool write(RecordCore::Project& project, const QString& name, const QVariant& value);

} // namespace ProjectFields
} // namespace OmbrelRecord
