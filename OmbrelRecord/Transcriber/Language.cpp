#include "OmbrelRecord/Transcriber/Language.h"

#include <algorithm>
#include <cstdlib>

namespace OmbrelRecord::Language {

namespace {

constexpr const char* fallback = "en-US";

// The C library's functions depend on the locale in force; identifiers do not.
char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace

std::string normalized(std::string_view text) {
    text = text.substr(0, text.find_first_of(".@"));
    if (text == "C" || text == "POSIX") return fallback;
    std::string out;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("-_"), text.size());
        std::string part(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (part.empty()) continue;
        std::transform(part.begin(), part.end(), part.begin(), lower);
        if (!out.empty()) {
            if (part.size() == 2) std::transform(part.begin(), part.end(), part.begin(), upper); // region
            if (part.size() == 4) part[0] = upper(part[0]);                                      // script
            out += '-';
        }
        out += part;
    }
    return out;
}

std::string ofUser() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(variable); value && *value) return normalized(value);
    return fallback;
}

std::string_view primary(std::string_view language) {
    return language.substr(0, language.find('-'));
}

std::optional<std::string> match(std::string_view wanted, const std::vector<std::string>& available) {
    const std::string language = normalized(wanted);
    if (std::find(available.begin(), available.end(), language) != available.end()) return language;
    const auto related = std::find_if(available.begin(), available.end(), [&](const std::string& candidate) {
        return primary(candidate) == primary(language);
    });
    return related == available.end() ? std::nullopt : std::optional(*related);
}

} // namespace OmbrelRecord::Language
