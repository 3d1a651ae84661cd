#pragma once

#include "OmbrelRecord/Application/Snapshot.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"

#include <vector>

namespace OmbrelRecord::EditorSnapshots {

/// The pictures that are made of the editor: the timeline in several states, every panel, the sheets. Making
/// them changes the model's project; it is left as it was by the last of them. The model must outlive the
/// views.
std::vector<Snapshot::View> views(EditorModel& model);

} // namespace OmbrelRecord::EditorSnapshots
