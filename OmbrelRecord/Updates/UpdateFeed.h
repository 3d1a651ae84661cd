#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace OmbrelRecord {

/// A release, as a feed announces it: {"version": "1.2.0", "url": "https://…", "notes": "…"}.
struct Release {
    std::string version;
    std::string url; ///< where a person gets it
    std::string notes;
    bool operator==(const Release&) const = default;

    /// Reads a feed. Throws RecordingError, also when the page is not one that may be opened in a browser.
    static Release read(std::string_view feed);
};

/// Whether `version` is later than `than`: numbers between dots, missing ones being 0. What is no such
/// version is never newer.
bool isNewer(std::string_view version, std::string_view than);

/// What a text in base64 stands for; empty when it is none.
std::string fromBase64(std::string_view text);

} // namespace OmbrelRecord
