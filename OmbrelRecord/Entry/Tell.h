#pragma once

#include <fmt/format.h>

#include <cstdio>
#include <string>
#include <utility>

namespace OmbrelRecord {

/// Prints text on standard error, from any thread. What cannot be printed is lost: a terminal that is gone or
/// a full disk behind a log must not end a recording, so this throws nothing for it.
template <typename... Arguments>
void tellAsIs(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    const std::string text = fmt::format(format, std::forward<Arguments>(arguments)...);
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

/// Likewise a line that begins with the program's name.
template <typename... Arguments>
void tell(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    tellAsIs("ombrel-record: {}\n", fmt::format(format, std::forward<Arguments>(arguments)...));
}

} // namespace OmbrelRecord
