#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

/// What the parts of AppModel's implementation share.
namespace OmbrelRecord::AppModelParts {

inline QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

inline QString pathText(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

inline std::filesystem::path toPath(const QString& path) {
    return std::filesystem::path(path.toStdString());
}

/// The one of a list with that id; null when there is none.
template <typename Item>
const Item* withId(const std::vector<Item>& list, std::uint32_t id) {
    for (const Item& item : list)
        if (item.id == id) return &item;
    return nullptr;
}

/// Calls `work` only while the object lives; the parts that are asked outlive it.
template <typename Work>
auto whileAlive(QObject* object, Work work) {
    return [watch = QPointer<QObject>(object), work = std::move(work)](auto&&... arguments) {
        if (watch) work(std::forward<decltype(arguments)>(arguments)...);
    };
}

/// The names of what is remembered.
namespace Settings {
constexpr auto systemAudio = "home.systemAudio";
constexpr auto microphone = "home.microphone";
constexpr auto microphoneID = "home.microphoneID";
constexpr auto camera = "home.camera";
constexpr auto cameraID = "home.cameraID";
} // namespace Settings

} // namespace OmbrelRecord::AppModelParts
