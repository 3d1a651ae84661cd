#pragma once

#include "OmbrelRecord/Entry/CaptureServices.h"

#include <filesystem>

namespace OmbrelRecord {

/// Tries the whole road from the screen to the film on this machine and reports what it found.
namespace SelfTest {

/// Records four seconds (of a window when `window` is set, else of the first display) into `folder`, plans
/// and exports them, and writes report.txt there, which ends with PASS or says what failed. Does not throw; a
/// report that cannot be written is told on standard error.
void run(const std::filesystem::path& folder, bool window, const RecordCore::MediaBackend& media,
         const CaptureServices& services);

} // namespace SelfTest
} // namespace OmbrelRecord
