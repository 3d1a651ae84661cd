#include "OmbrelRecord/AppModel/Images.h"

#include "RecordCore/Rendering/RgbImage.h"

namespace OmbrelRecord {

QImage imageOf(const RecordCore::PlanarView& picture) {
    QImage image(picture.width, picture.height, QImage::Format_RGB32);
    if (!image.isNull()) RecordCore::toBgra(picture, image.bits(), image.bytesPerLine(), 0, picture.height);
    return image;
}

} // namespace OmbrelRecord
