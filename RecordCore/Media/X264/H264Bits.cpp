#include "RecordCore/Media/X264/H264Bits.h"

#include <bit>

namespace RecordCore::X264 {

std::uint32_t BitReader::bits(int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i, ++at) {
        const std::size_t byte = at / 8;
        const unsigned bit = byte < bytes.size() ? (bytes[byte] >> (7 - at % 8)) & 1U : 0U;
        value = value << 1 | bit;
    }
    return value;
}

std::uint32_t BitReader::unsignedCode() {
    int zeros = 0;
    while (zeros < 31 && !flag())
        ++zeros;
    return (std::uint32_t{1} << zeros) - 1 + bits(zeros);
}

std::int32_t BitReader::signedCode() {
    const std::uint32_t code = unsignedCode();
    const auto magnitude = static_cast<std::int32_t>((code + 1) / 2);
    return code % 2 != 0 ? magnitude : -magnitude;
}

void BitWriter::bits(std::uint32_t value, int count) {
    for (int i = count - 1; i >= 0; --i) {
        if (freeBits == 0) {
            out.push_back(0);
            freeBits = 8;
        }
        --freeBits;
        out.back() = static_cast<std::uint8_t>(out.back() | ((value >> i) & 1U) << freeBits);
    }
}

void BitWriter::unsignedCode(std::uint32_t value) {
    const int length = static_cast<int>(std::bit_width(value + 1));
    bits(0, length - 1);
    bits(value + 1, length);
}

void BitWriter::signedCode(std::int32_t value) {
    unsignedCode(value > 0 ? static_cast<std::uint32_t>(value) * 2 - 1
                           : static_cast<std::uint32_t>(-value) * 2);
}

void BitWriter::align(bool bit) {
    while (freeBits != 0)
        bits(bit ? 1 : 0, 1);
}

void unescape(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out) {
    int zeros = 0;
    for (const std::uint8_t byte : bytes) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        out.push_back(byte);
    }
}

void escape(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out) {
    int zeros = 0;
    for (const std::uint8_t byte : bytes) {
        if (zeros >= 2 && byte <= 3) {
            out.push_back(3);
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        out.push_back(byte);
    }
}

} // namespace RecordCore::X264
