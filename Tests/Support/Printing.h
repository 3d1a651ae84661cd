#pragma once

#include "RecordCore/Model/NRect.h"
#include "RecordCore/Model/TimeRange.h"

#include <ostream>

// How GoogleTest shows values in its messages. One place, so that every test shows them alike.

namespace RecordCore {

inline void PrintTo(const NRect& r, std::ostream* out) {
    *out << '(' << r.x << ", " << r.y << ", " << r.w << ", " << r.h << ')';
}

inline void PrintTo(const TimeRange& r, std::ostream* out) {
    *out << '[' << r.start << ", " << r.end << ')';
}

} // namespace RecordCore
