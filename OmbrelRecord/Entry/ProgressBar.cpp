#include "OmbrelRecord/Entry/ProgressBar.h"

#include "OmbrelRecord/Entry/Tell.h"
#include "RecordCore/Model/Clock.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace OmbrelRecord {

namespace {
constexpr int width = 32;
constexpr auto redrawInterval = std::chrono::milliseconds(100);
} // namespace

ProgressBar::ProgressBar(std::string title) :
    title(std::move(title)), terminal(isatty(STDERR_FILENO) == 1), started(std::chrono::steady_clock::now()) {
}

ProgressBar::~ProgressBar() {
    if (shown) tellAsIs("\r\x1b[K");
}

void ProgressBar::update(double share) {
    if (!terminal) return;
    const auto now = std::chrono::steady_clock::now();
    if (shown && now - drawn < redrawInterval) return;
    drawn = now;
    shown = true;

    share = std::clamp(share, 0.0, 1.0);
    const int full = static_cast<int>(share * width);
    std::string bar;
    for (int i = 0; i < width; ++i)
        bar += i < full ? "█" : "░";
    const double elapsed = std::chrono::duration<double>(now - started).count();
    std::string left;
    if (share > 0.02 && elapsed > 1)
        left = fmt::format(", {} left", RecordCore::clock(elapsed / share * (1 - share) + 0.5));
    tellAsIs("\r\x1b[K{} {} {:3.0f} %{}", title, bar, share * 100, left);
}

} // namespace OmbrelRecord
