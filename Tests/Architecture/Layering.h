#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Who may include whom. The tables behind these functions are the written form of the layering that
/// ARCHITECTURE.md explains; a new folder or library is added there.
namespace Layering {

/// One include directive of a source text.
struct Include {
    int line = 0;          ///< from 1
    std::string_view path; ///< what stands between the quotes or brackets; a macro's name for a computed one
    char opening = '"';    ///< '"', '<', or 0 for a computed include
};

/// The include directives of a text. Those in comments do not count; those behind #if do.
std::vector<Include> includes(std::string_view text);

/// Every breach in one file, as "file:line: what is wrong". `file` is its path from the root of the sources,
/// with '/' between the parts.
std::vector<std::string> breaches(std::string_view file, std::string_view text);

} // namespace Layering
