#pragma once

#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorModel/ExportQueue.h"
#include "OmbrelRecord/EditorModel/LookPictures.h"
#include "OmbrelRecord/EditorModel/LookPresets.h"
#include "OmbrelRecord/EditorModel/TimelineController.h"

#include <QtQml/qqml.h>

// The models' types under their names in QML; the models themselves know nothing of it.
namespace OmbrelRecord {

struct EditorModelInQml {
    Q_GADGET
    QML_FOREIGN(OmbrelRecord::EditorModel)
    QML_NAMED_ELEMENT(EditorModel)
    QML_UNCREATABLE("recordings are opened by the application")
};

struct TimelineControllerInQml {
    Q_GADGET
    QML_FOREIGN(OmbrelRecord::TimelineController)
    QML_NAMED_ELEMENT(TimelineController)
};

struct ExportQueueInQml {
    Q_GADGET
    QML_FOREIGN(OmbrelRecord::ExportQueue)
    QML_NAMED_ELEMENT(ExportQueue)
};

struct LookPresetsInQml {
    Q_GADGET
    QML_FOREIGN(OmbrelRecord::LookPresets)
    QML_NAMED_ELEMENT(LookPresets)
};

struct LookPicturesInQml {
    Q_GADGET
    QML_FOREIGN(OmbrelRecord::LookPictures)
    QML_NAMED_ELEMENT(LookPictures)
};

} // namespace OmbrelRecord
