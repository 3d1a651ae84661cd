#pragma once

#include "RecordCore/Model/PictureView.h"

#include <QtGui/QImage>

namespace OmbrelRecord {

/// A picture of the engine as an image of the interface. Any thread.
QImage imageOf(const RecordCore::PlanarView& picture);

} // namespace OmbrelRecord
