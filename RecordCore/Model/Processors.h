#pragma once

namespace RecordCore {

/// How many processors this process may run on, at least 1. (The standard library counts those of the
/// machine, also where the process was given a few of them only.)
int processors();

} // namespace RecordCore
