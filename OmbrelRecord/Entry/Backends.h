#pragma once

#include "RecordCore/Media/MediaBackend.h"

#include <memory>

namespace OmbrelRecord {

/// The readers, encoders and writers of this build: the one place where the engine's interfaces and the
/// libraries behind them meet.
std::shared_ptr<const RecordCore::MediaBackend> makeMediaBackend();

} // namespace OmbrelRecord
