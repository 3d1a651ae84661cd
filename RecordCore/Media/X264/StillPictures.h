#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace RecordCore::X264 {

/// Writes pictures that repeat the one before, macroblock for macroblock, without asking the encoder, and
/// renumbers the encoder's own pictures around them.
///
/// A P picture in which every macroblock is skipped, with the deblocking filter off, decodes to exactly its
/// reference (H.264, 8.4.1.1: the first macroblock has no neighbours and so no motion, and the others follow
/// it). That holds as long as the reference is the picture just before: one reference frame, no reordering
/// (picture order count type 2), no weighted prediction.
///
/// Every such picture uses up a frame_num, so the slices that follow carry theirs shifted. A missing shift
/// shows in no decoder's log, only in the pictures' times.
class StillPictures {
public:
    /// Reads the stream's parameter sets (NAL units without start code or length). None when the stream
    /// has a shape in which repeats cannot be inserted.
    static std::optional<StillPictures> forStream(std::span<const std::uint8_t> sequenceSet,
                                                  std::span<const std::uint8_t> pictureSet);

    /// Appends the encoder's NAL unit (without length), its frame_num shifted by the repeats so far.
    void append(std::span<const std::uint8_t> unit, std::vector<std::uint8_t>& out);
    /// Appends a NAL unit that repeats the picture appended before.
    void appendRepeat(std::vector<std::uint8_t>& out);

private:
    StillPictures() = default;

    int frameNumBits = 0;
    int initialQp = 0;
    bool arithmetic = false; ///< CABAC, else CAVLC
    std::uint32_t pictureSetId = 0;
    int macroblocks = 0;

    std::uint32_t inserted = 0;          ///< repeats since the last IDR picture
    std::uint32_t lastFrameNum = 0;      ///< of the picture appended last
    std::vector<std::uint8_t> sliceData; ///< what follows a repeat's slice header
    std::vector<std::uint8_t> plain;     ///< scratch
};

} // namespace RecordCore::X264
