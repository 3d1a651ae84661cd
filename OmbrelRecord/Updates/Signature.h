#pragma once

#include <string_view>

namespace OmbrelRecord {

/// Whether an Ed25519 signature (RFC 8032; 64 bytes) of exactly these bytes was made with the private half of
/// a public key (32 bytes). Any thread.
bool isSigned(std::string_view bytes, std::string_view signature, std::string_view publicKey);

} // namespace OmbrelRecord
