#include "OmbrelRecord/Updates/UpdateFeed.h"

#include "RecordCore/Model/RecordingError.h"

#include <QtCore/QByteArray>
#include <charconv>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <optional>

namespace OmbrelRecord {

using RecordCore::RecordingError;

namespace {

std::optional<std::vector<unsigned>> numbers(std::string_view version) {
    std::vector<unsigned> list;
    for (;;) {
        const std::size_t end = std::min(version.find('.'), version.size());
        unsigned number = 0;
        const auto [last, error] = std::from_chars(version.data(), version.data() + end, number);
        if (error != std::errc() || last != version.data() + end) return std::nullopt;
        list.push_back(number);
        if (end == version.size()) return list;
        version.remove_prefix(end + 1);
    }
}

} // namespace

Release Release::read(std::string_view feed) {
    try {
        const auto json = nlohmann::json::parse(feed);
        Release release{json.at("version"), json.at("url"), json.value("notes", "")};
        if (!numbers(release.version))
            throw RecordingError(fmt::format("update feed: \"{}\" is no version", release.version));
        if (!release.url.starts_with("https://"))
            throw RecordingError(fmt::format("update feed: {} is no page", release.url));
        return release;
    } catch (const nlohmann::json::exception& error) {
        throw RecordingError(fmt::format("update feed: {}", error.what()));
    }
}

bool isNewer(std::string_view version, std::string_view than) {
    auto a = numbers(version);
    auto b = numbers(than);
    if (!a || !b) return false;
    const std::size_t length = std::max(a->size(), b->size());
    a->resize(length);
    b->resize(length);
    return *a > *b;
}

std::string fromBase64(std::string_view text) {
    const QByteArray bytes(text.data(), static_cast<qsizetype>(text.size()));
    const auto result =
        QByteArray::fromBase64Encoding(bytes.trimmed(), QByteArray::AbortOnBase64DecodingErrors);
    return result ? result.decoded.toStdString() : std::string();
}

} // namespace OmbrelRecord
