#pragma once

#include "RecordCore/Model/PictureView.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace RecordCore {

/// One changed picture of the screen. Everything in it is borrowed for the duration of the call.
struct ScreenFrame {
    PlanarView picture; ///< the whole picture, of the stream's size; the pointer is not in it
    double time = 0;    ///< host clock seconds at which it was taken
    /// One byte per 16×16 block of the picture (row by row, partial blocks at the right and bottom count),
    /// not 0 where it may differ from the frame before. The first frame has every block set.
    std::span<const std::uint8_t> changedBlocks;
};

/// The moving picture of one display or window. It delivers a frame only when something changed, and at
/// most the chosen number a second. Created ready to start: the size is known and fixed for good.
class ScreenStream {
public:
    /// Both are called on the stream's own thread, never at the same time, and must not throw.
    struct Handlers {
        std::function<void(const ScreenFrame&)> onFrame;
        /// The stream has ended by itself and delivers nothing more; the message is for the user.
        std::function<void(const std::string& message)> onEnd;
    };

    virtual ~ScreenStream() = default;

    virtual int width() const = 0;  ///< pixels, even
    virtual int height() const = 0; ///< pixels, even

    /// Starts delivery, the first frame at once. Called once. Throws RecordingError.
    virtual void start(Handlers handlers) = 0;

    /// Ends delivery; no handler runs after it returns. Must not be called from a handler. Harmless when the
    /// stream has ended or was never started.
    virtual void stop() = 0;
};

} // namespace RecordCore
