#include "RecordCore/Model/Uuid.h"

#include <fmt/format.h>

#include <random>

namespace RecordCore {

Uuid Uuid::fresh() {
    thread_local std::mt19937_64 generator = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(), device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    Uuid id{generator(), generator()};
    id.high = (id.high & 0xffffffffffff0fffULL) | 0x4000ULL;
    id.low = (id.low & 0x3fffffffffffffffULL) | 0x8000000000000000ULL;
    return id;
}

std::string Uuid::text() const {
    return fmt::format("{:08x}-{:04x}-{:04x}-{:04x}-{:012x}", high >> 32, (high >> 16) & 0xffff,
                       high & 0xffff, low >> 48, low & 0xffffffffffffULL);
}

} // namespace RecordCore
