#pragma once

#include "RecordCore/Media/TimeStretcher.h"

#include <memory>

namespace RecordCore::RubberBand {

/// From half speed to four times the speed the Rubber Band library's finer engine; beyond, where nothing can
/// be understood any more, overlapping grains of the sound.
std::unique_ptr<TimeStretcher> makeStretcher();

} // namespace RecordCore::RubberBand
