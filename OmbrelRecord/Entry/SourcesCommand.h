#pragma once

#include "OmbrelRecord/Entry/CaptureServices.h"

namespace OmbrelRecord::Commands {

/// Prints displays, windows, microphones and cameras as one JSON object. A service that is not there has an
/// empty list; why is told on standard error.
void runSources(const CaptureServices& services);

} // namespace OmbrelRecord::Commands
