#pragma once

#include "RecordCore/Media/StreamDescription.h"

#include <cstdint>
#include <span>
#include <vector>

namespace RecordCore::FFmpeg {

/// The avcC or hvcC record (ISO/IEC 14496-15) for parameter sets with start codes; a record is returned as it
/// is. Empty when parameter sets are missing. For 8-bit 4:2:0 streams.
std::vector<std::uint8_t> configurationRecord(Codec codec, std::span<const std::uint8_t> parameterSets);

/// Replaces start codes by 4-byte lengths; `out` is overwritten.
void withLengths(std::span<const std::uint8_t> startCoded, std::vector<std::uint8_t>& out);

} // namespace RecordCore::FFmpeg
