#include "RecordCore/Media/X264/StillPictures.h"

#include "RecordCore/Media/X264/H264Bits.h"

#include <algorithm>
#include <array>

namespace RecordCore::X264 {

namespace {

constexpr std::uint8_t repeatHeader = 0x41; // nal_ref_idc 2, a slice of a picture that is not IDR
constexpr int sliceType = 1;
constexpr int idrType = 5;

// H.264, Table 9-44: range of the less probable symbol for the states from 42 on, by quarter of the range.
constexpr int firstState = 42;
constexpr int lastState = 62;
constexpr std::array<std::array<int, 4>, 21> lessProbableRange{
    {{16, 20, 23, 27}, {15, 19, 22, 25}, {14, 18, 21, 24}, {14, 17, 20, 23}, {13, 16, 19, 22},
     {12, 15, 18, 21}, {12, 14, 17, 20}, {11, 14, 16, 19}, {11, 13, 15, 18}, {10, 12, 15, 17},
     {10, 12, 14, 16}, {9, 11, 13, 15},  {9, 11, 12, 14},  {8, 10, 12, 14},  {8, 9, 11, 13},
     {7, 9, 11, 12},   {7, 9, 10, 12},   {7, 8, 10, 11},   {6, 8, 9, 11},    {6, 7, 9, 10},
     {6, 7, 8, 9}}};

int unitType(std::span<const std::uint8_t> unit) {
    return unit.empty() ? 0 : unit[0] & 0x1F;
}

/// CABAC data of a slice in which all macroblocks are skipped (H.264, 9.3.4). mb_skip_flag is 1 throughout,
/// on context 11; at a slice quantiser of 51 that context starts in state 42 with 1 the more probable
/// symbol. Coding more probable symbols never moves the low end of the interval, so all bits but the last
/// few are 0.
void appendSkippedMacroblocks(int count, std::vector<std::uint8_t>& out) {
    BitWriter writer(out);
    int range = 510;
    int state = firstState;
    bool firstBit = true; // the very first bit is not written (9.3.4.2)
    const auto put = [&](std::uint32_t bit) {
        if (!firstBit) writer.bits(bit, 1);
        firstBit = false;
    };
    for (int i = 0; i < count; ++i) {
        range -= lessProbableRange[static_cast<std::size_t>(state - firstState)]
                                  [static_cast<std::size_t>(range >> 6 & 3)];
        state = std::min(state + 1, lastState);
        for (; range < 256; range <<= 1)
            put(0);
        if (i + 1 == count) break;
        range -= 2; // end_of_slice_flag 0
        for (; range < 256; range <<= 1)
            put(0);
    }
    // end_of_slice_flag 1 and the flushing of 9.3.4.5, whose last bit stops the slice's data. A range of 2
    // is doubled seven times; nothing is added any more, so no bit that leaves can still change.
    auto low = static_cast<std::uint32_t>(range - 2);
    for (int i = 0; i < 7; ++i) {
        put(low >> 9 & 1U);
        low = low << 1 & 0x3FFU;
    }
    put(low >> 9 & 1U);
    writer.bits((low >> 7 & 3U) | 1U, 2);
    writer.align(false);
}

} // namespace

std::optional<StillPictures> StillPictures::forStream(std::span<const std::uint8_t> sequenceSet,
                                                      std::span<const std::uint8_t> pictureSet) {
    if (sequenceSet.size() < 4 || pictureSet.size() < 2) return std::nullopt;
    StillPictures result;
    std::vector<std::uint8_t> bytes;
    unescape(sequenceSet, bytes);
    BitReader sequence(std::span<const std::uint8_t>(bytes).subspan(1));
    const std::uint32_t profile = sequence.bits(8);
    sequence.bits(16); // constraint flags, level
    sequence.unsignedCode();
    if (profile >= 100) {
        if (sequence.unsignedCode() != 1) return std::nullopt; // 4:2:0
        sequence.unsignedCode();
        sequence.unsignedCode();
        sequence.flag();
        if (sequence.flag()) return std::nullopt; // scaling lists: never written by this encoder
    }
    result.frameNumBits = static_cast<int>(sequence.unsignedCode()) + 4;
    if (sequence.unsignedCode() != 2) return std::nullopt; // picture order count type
    if (sequence.unsignedCode() != 1) return std::nullopt; // reference frames
    sequence.flag();
    const auto columns = static_cast<int>(sequence.unsignedCode()) + 1;
    const auto rows = static_cast<int>(sequence.unsignedCode()) + 1;
    if (!sequence.flag()) return std::nullopt; // fields
    result.macroblocks = columns * rows;

    bytes.clear();
    unescape(pictureSet, bytes);
    BitReader picture(std::span<const std::uint8_t>(bytes).subspan(1));
    result.pictureSetId = picture.unsignedCode();
    picture.unsignedCode();
    result.arithmetic = picture.flag();
    picture.flag();
    if (picture.unsignedCode() != 0) return std::nullopt; // slice groups
    picture.unsignedCode();
    picture.unsignedCode();
    if (picture.flag()) return std::nullopt; // weighted prediction
    picture.bits(2);
    result.initialQp = 26 + picture.signedCode();
    picture.signedCode();
    picture.signedCode();
    if (!picture.flag()) return std::nullopt; // the deblocking filter could not be switched off
    picture.flag();
    if (picture.flag()) return std::nullopt; // redundant pictures

    if (result.arithmetic) appendSkippedMacroblocks(result.macroblocks, result.sliceData);
    return result;
}

void StillPictures::append(std::span<const std::uint8_t> unit, std::vector<std::uint8_t>& out) {
    const int type = unitType(unit);
    if (type == idrType) {
        inserted = 0;
        lastFrameNum = 0;
    }
    if (type != sliceType) {
        out.insert(out.end(), unit.begin(), unit.end());
        return;
    }
    plain.clear();
    unescape(unit, plain);
    BitReader header(std::span<const std::uint8_t>(plain).subspan(1));
    header.unsignedCode(); // first_mb_in_slice
    header.unsignedCode(); // slice_type
    header.unsignedCode(); // pic_parameter_set_id
    const std::size_t place = 8 + header.position();
    const std::uint32_t mask = (std::uint32_t{1} << frameNumBits) - 1;
    lastFrameNum = (header.bits(frameNumBits) + inserted) & mask;
    for (int i = 0; i < frameNumBits; ++i) {
        const std::size_t bit = place + static_cast<std::size_t>(i);
        const auto select = static_cast<std::uint8_t>(0x80U >> bit % 8);
        const bool one = (lastFrameNum >> (frameNumBits - 1 - i) & 1U) != 0;
        plain[bit / 8] = static_cast<std::uint8_t>(one ? plain[bit / 8] | select : plain[bit / 8] & ~select);
    }
    escape(plain, out);
}

void StillPictures::appendRepeat(std::vector<std::uint8_t>& out) {
    ++inserted;
    lastFrameNum = (lastFrameNum + 1) & ((std::uint32_t{1} << frameNumBits) - 1);

    plain.clear();
    plain.push_back(repeatHeader);
    BitWriter slice(plain);
    slice.unsignedCode(0); // first_mb_in_slice
    slice.unsignedCode(5); // slice_type: P, as all slices of the picture
    slice.unsignedCode(pictureSetId);
    slice.bits(lastFrameNum, frameNumBits);
    slice.bits(0, 1);                      // num_ref_idx_active_override_flag
    slice.bits(0, 1);                      // ref_pic_list_modification_flag_l0
    slice.bits(0, 1);                      // adaptive_ref_pic_marking_mode_flag
    if (arithmetic) slice.unsignedCode(0); // cabac_init_idc
    slice.signedCode(51 - initialQp);      // slice_qp_delta
    slice.unsignedCode(1);                 // disable_deblocking_filter_idc
    if (arithmetic) {
        slice.align(true);
        plain.insert(plain.end(), sliceData.begin(), sliceData.end());
    } else {
        slice.unsignedCode(static_cast<std::uint32_t>(macroblocks)); // mb_skip_run
        slice.bits(1, 1);
        slice.align(false);
    }
    escape(plain, out);
}

} // namespace RecordCore::X264
