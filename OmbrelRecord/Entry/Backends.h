#pragma once

#include "RecordCore/Media/MediaBackend.h"

#include <memory>
#include <string_view>

namespace OmbrelRecord {

/// The readers, encoders and writers of this build: the one place where the engine's interfaces and the
/// libraries behind them meet. Loads nothing yet: that happens at the first call of what it returns.
std::shared_ptr<const RecordCore::MediaBackend> makeMediaBackend();

/// Loads the inner loops that work on pictures. They load themselves at their first call, but that may be on
/// a thread that cannot tell that they are missing: whoever brings pictures calls this before. Any thread.
/// Throws RecordingError.
void loadKernels();

/// Loads what it needs, which takes a tenth of a second: for another thread, while there is time. Throws
/// nothing; what is amiss is told when it is used.
void loadMedia();

/// `isSigned` of Updates/Signature.h. Throws RecordingError when its module cannot be had.
bool verifySignature(std::string_view bytes, std::string_view signature, std::string_view publicKey);

} // namespace OmbrelRecord
