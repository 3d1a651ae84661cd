#pragma once

#include <chrono>
#include <string>

namespace OmbrelRecord {

/// A progress bar on standard error while that is a terminal; silent otherwise. Redraws a few times a second
/// at most and shows the time left once there is enough to judge by. One thread at a time.
class ProgressBar {
public:
    explicit ProgressBar(std::string title);
    /// Wipes the bar.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// `share` of the work is done, 0…1.
    void update(double share);

private:
    std::string title;
    bool shown = false;
    bool terminal;
    std::chrono::steady_clock::time_point started;
    std::chrono::steady_clock::time_point drawn;
};

} // namespace OmbrelRecord
