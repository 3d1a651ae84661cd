#include "RecordCore/Capture/WindowList.h"

#include <algorithm>
#include <tuple>

namespace RecordCore {

namespace {
constexpr double leastWidth = 240;
constexpr double leastHeight = 160;
constexpr std::size_t longTitle = 47; // characters
constexpr std::size_t cutTitle = 45;

/// Where each character of a UTF-8 text starts.
std::vector<std::size_t> characterStarts(const std::string& text) {
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) starts.push_back(i);
    return starts;
}
} // namespace

std::vector<WindowInfo> recordableWindows(std::vector<WindowInfo> windows, std::int64_t ownProcess) {
    std::erase_if(windows, [ownProcess](const WindowInfo& window) {
        return window.processId == ownProcess || !window.onScreen || window.layer != 0 ||
               window.frame.width < leastWidth || window.frame.height < leastHeight ||
               window.application.empty();
    });
    std::stable_sort(windows.begin(), windows.end(), [](const WindowInfo& a, const WindowInfo& b) {
        return std::tie(a.application, a.title) < std::tie(b.application, b.title);
    });
    return windows;
}

std::string windowName(const WindowInfo& window) {
    const std::string name = window.application.empty() ? "Window" : window.application;
    if (window.title.empty() || window.title == name) return name;
    const std::vector<std::size_t> starts = characterStarts(window.title);
    if (starts.size() < longTitle) return name + " · " + window.title;
    return name + " · " + window.title.substr(0, starts[cutTitle]) + "…";
}

} // namespace RecordCore
