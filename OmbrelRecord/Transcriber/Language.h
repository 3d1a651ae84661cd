#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OmbrelRecord {

/// Language identifiers: "en-US", "zh-Hant-TW", "de".
namespace Language {

/// One form for what comes from locales, folders and people: "en_us.UTF-8@euro" is "en-US". "C" and "POSIX"
/// are American English. Empty for an empty text.
std::string normalized(std::string_view text);

/// The language of the user's messages, from the environment; American English when it says nothing.
std::string ofUser();

/// "en" of "en-US".
std::string_view primary(std::string_view language);

/// The available language (normalised ones) that serves who wants `wanted`: the same, else the first that
/// differs only in region or script. A recogniser trained elsewhere beats none.
std::optional<std::string> match(std::string_view wanted, const std::vector<std::string>& available);

} // namespace Language
} // namespace OmbrelRecord
