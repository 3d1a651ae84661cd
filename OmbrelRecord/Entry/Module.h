#pragma once

namespace OmbrelRecord {

/// Loads the module of a file name beside the program, once, and keeps it until the process ends. Returns its
/// `ombrelModule`. Any thread; takes some milliseconds the first time, for large ones a tenth of a second.
/// Throws RecordingError when it is missing, damaged or of another build.
const void* loadModule(const char* file);

/// What a module of `Modules` offers.
template <typename Offer>
const Offer& module() {
    static const Offer& offer = *static_cast<const Offer*>(loadModule(Offer::file));
    return offer;
}

} // namespace OmbrelRecord
