#include "RecordCore/Media/FrameCursor.h"

#include <utility>

namespace RecordCore {

namespace {
constexpr double nearly = 0.000001;
}

FrameCursor::FrameCursor(std::unique_ptr<VideoReader> reader) : reader(std::move(reader)) {}

const VideoFrame* FrameCursor::at(double seconds) {
    unchanged = true;
    const bool back = current && seconds + nearly < current->time;
    if (back) {
        next.reset();
        reader->seek(seconds);
    }
    if (!started || back) {
        started = true;
        unchanged = false;
        if (!back) reader->skipTo(seconds);
        current = reader->next();
        if (current) next = reader->next();
    } else if (next && next->time <= seconds + nearly) {
        reader->skipTo(seconds);
    }
    while (next && next->time <= seconds + nearly) {
        current = std::exchange(next, std::nullopt);
        unchanged = false;
        next = reader->next();
    }
    return current ? &*current : nullptr;
}

} // namespace RecordCore
