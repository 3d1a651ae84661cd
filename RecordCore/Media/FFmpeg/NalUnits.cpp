#include "RecordCore/Media/FFmpeg/NalUnits.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace RecordCore::FFmpeg {

namespace {

using Bytes = std::span<const std::uint8_t>;

/// Calls `action` with every unit between start codes (00 00 01), without zeros that trail it.
template <typename Action>
void forEachUnit(Bytes bytes, Action action) {
    constexpr std::array<std::uint8_t, 3> code{0, 0, 1};
    auto start = std::search(bytes.begin(), bytes.end(), code.begin(), code.end());
    while (start != bytes.end()) {
        const auto first = start + code.size();
        const auto next = std::search(first, bytes.end(), code.begin(), code.end());
        auto last = next;
        while (last != first && *std::prev(last) == 0)
            --last;
        if (last != first) action(Bytes(first, last));
        start = next;
    }
}

void put(std::vector<std::uint8_t>& record, Bytes unit) {
    record.push_back(static_cast<std::uint8_t>(unit.size() >> 8));
    record.push_back(static_cast<std::uint8_t>(unit.size()));
    record.insert(record.end(), unit.begin(), unit.end());
}

std::vector<std::uint8_t> avcRecord(Bytes sets) {
    Bytes sequence, picture;
    forEachUnit(sets, [&](Bytes unit) {
        if ((unit[0] & 0x1F) == 7) sequence = unit;
        if ((unit[0] & 0x1F) == 8) picture = unit;
    });
    if (sequence.size() < 4 || picture.empty()) return {};
    std::vector<std::uint8_t> record{1, sequence[1], sequence[2], sequence[3], 0xFF, 0xE1};
    put(record, sequence);
    record.push_back(1);
    put(record, picture);
    if (sequence[1] >= 100) record.insert(record.end(), {0xFD, 0xF8, 0xF8, 0}); // 4:2:0, 8 bit, no more sets
    return record;
}

std::vector<std::uint8_t> hevcRecord(Bytes sets) {
    constexpr int videoSet = 32;
    std::array<Bytes, 3> units; // video, sequence and picture parameter set
    forEachUnit(sets, [&](Bytes unit) {
        const int type = unit[0] >> 1 & 0x3F;
        if (type >= videoSet && type < videoSet + 3) units[static_cast<std::size_t>(type - videoSet)] = unit;
    });
    if (std::any_of(units.begin(), units.end(), [](Bytes unit) { return unit.size() < 3; })) return {};
    // The sequence set's profile and level lie at a fixed place once emulation prevention is taken out.
    std::vector<std::uint8_t> plain;
    int zeros = 0;
    for (const std::uint8_t byte : units[1]) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        plain.push_back(byte);
    }
    if (plain.size() < 15) return {};
    std::vector<std::uint8_t> record;
    record.reserve(64 + sets.size());
    record.push_back(1);
    record.insert(record.end(), plain.begin() + 3, plain.begin() + 15);
    // No segmentation known, no parallelism told, 4:2:0, 8 bit, no rate, one nested layer, 4-byte lengths.
    record.insert(record.end(), {0xF0, 0x00, 0xFC, 0xFD, 0xF8, 0xF8, 0x00, 0x00, 0x0F, 3});
    for (std::size_t i = 0; i < units.size(); ++i) {
        record.push_back(static_cast<std::uint8_t>(0x80U | (videoSet + i)));
        record.push_back(0);
        record.push_back(1);
        put(record, units[i]);
    }
    return record;
}

} // namespace

std::vector<std::uint8_t> configurationRecord(Codec codec, Bytes sets) {
    if (sets.empty()) return {};
    if (sets[0] == 1) return {sets.begin(), sets.end()};
    return codec == Codec::hevc ? hevcRecord(sets) : avcRecord(sets);
}

void withLengths(Bytes startCoded, std::vector<std::uint8_t>& out) {
    out.clear();
    forEachUnit(startCoded, [&](Bytes unit) {
        const auto length = static_cast<std::uint32_t>(unit.size());
        for (int shift = 24; shift >= 0; shift -= 8)
            out.push_back(static_cast<std::uint8_t>(length >> shift));
        out.insert(out.end(), unit.begin(), unit.end());
    });
}

} // namespace RecordCore::FFmpeg
