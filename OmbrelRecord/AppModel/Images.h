#pragma once

#include "RecordCore/Model/PictureView.h"

#include <QtGui/QImage>

namespace OmbrelRecord {

/// A picture of the engine as an image of the interface. Any thread.
QImage imageOf(const RecordCore::PlanarView& picture);

/// The same, made smaller where it is larger than that, its shape kept. Needs no memory for the whole
/// picture.
QImage imageOf(const RecordCore::PlanarView& picture, QSize largest);

} // namespace OmbrelRecord
