#pragma once

#include "OmbrelRecord/Application/Snapshot.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"

#include <atomic>
#include <functional>
#include <vector>

namespace OmbrelRecord::EditorSnapshots {

/// The pictures that are made of the editor: the timeline in several states, every panel, the sheets. Making
/// them changes the model's project; it is left as it was by the last of them. The model must outlive the
/// views.
std::vector<Snapshot::View> views(EditorModel& model);

/// Stands in for the export while pictures are made of its sheet, and writes nothing: films of 30 frames a
/// second are done at once, those of 24 fail for want of room, the others stand at two fifths until they are
/// given up.
void exportStill(const ExportJob& job, const std::function<void(double)>& progress,
                 const std::atomic<bool>& cancel);

} // namespace OmbrelRecord::EditorSnapshots
