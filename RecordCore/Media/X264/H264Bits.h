#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace RecordCore::X264 {

/// Reads the bits of a parameter set or slice header (ITU-R H.264, 7.2 and 9.1), most significant first.
/// Past the end it reads zeros.
class BitReader {
public:
    explicit BitReader(std::span<const std::uint8_t> bytes) : bytes(bytes) {}

    std::uint32_t bits(int count);
    bool flag() { return bits(1) != 0; }
    std::uint32_t unsignedCode();
    std::int32_t signedCode();
    std::size_t position() const { return at; } ///< in bits

private:
    std::span<const std::uint8_t> bytes;
    std::size_t at = 0;
};

/// Appends bits to a buffer, most significant first.
class BitWriter {
public:
    explicit BitWriter(std::vector<std::uint8_t>& out) : out(out) {}

    void bits(std::uint32_t value, int count);
    void unsignedCode(std::uint32_t value);
    void signedCode(std::int32_t value);
    /// Fills the last byte with copies of `bit`.
    void align(bool bit);

private:
    std::vector<std::uint8_t>& out;
    int freeBits = 0; ///< in the last byte
};

/// Appends the payload of a NAL unit without its emulation prevention bytes (H.264, 7.4.1).
void unescape(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out);
/// Appends a payload with emulation prevention bytes.
void escape(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out);

} // namespace RecordCore::X264
