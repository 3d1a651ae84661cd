#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace RecordCore {

/// A random identifier (RFC 4122 version 4) of a block in memory; it is never stored.
struct Uuid {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    /// A fresh identifier; callable from any thread.
    static Uuid fresh();
    /// The usual text of 36 characters.
    std::string text() const;

    bool operator==(const Uuid&) const = default;
};

} // namespace RecordCore

template <>
struct std::hash<RecordCore::Uuid> {
    std::size_t operator()(const RecordCore::Uuid& id) const noexcept {
        return static_cast<std::size_t>(id.high ^ id.low);
    }
};
