#pragma once

#include <string>

namespace RecordCore {

/// "%d:%02d" of the minutes and seconds of max(0, floor(seconds)). A value that is not a number counts as 0,
/// one beyond 10^15 as that.
std::string clock(double seconds);

} // namespace RecordCore
