#pragma once

#include "RecordCore/Capture/PipeWire/PipeWireLoop.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <spa/param/param.h>
#include <spa/pod/builder.h>
#include <span>
#include <string>
#include <vector>

namespace RecordCore {

/// One picture in a buffer of the stream, borrowed for the duration of the call.
struct PipeWirePicture {
    struct Block {
        const std::uint8_t* data = nullptr;
        std::size_t bytes = 0;
        std::ptrdiff_t stride = 0; ///< 0: the source did not say
    };
    std::span<const Block> blocks;
    double time = 0; ///< host clock seconds; the source's own time where it gives one that can be right
    const spa_buffer* buffer = nullptr; ///< for the metadata that a particular kind of source attaches
};

/// Receives the pictures of one video node: what cameras and screen casts have in common. Late pictures are
/// discarded: of those that wait, only the newest is handed on. All callbacks run on the loop's thread.
class PipeWireConsumer {
public:
    struct Setup {
        std::string name;                        ///< of the stream, for the user's mixers and monitors
        std::string role;                        ///< "Camera" or "Screen"
        std::string target;                      ///< serial or name of the node; empty: given by `node`
        std::uint32_t node = PW_ID_ANY;          ///< id of the node
        std::span<const spa_pod* const> formats; ///< in order of preference
    };
    struct Handlers {
        /// A format was agreed on, or another one. False refuses it.
        std::function<bool(const spa_pod&)> onFormat;
        std::function<void(const PipeWirePicture&)> onPicture;
        /// Parameters beyond the header that the buffers shall carry; may be empty.
        std::function<std::vector<const spa_pod*>(spa_pod_builder&)> moreMetadata;
        /// The node is gone or failed.
        std::function<void(const std::string&)> onEnd;
    };

    /// The loop must outlive it.
    explicit PipeWireConsumer(PipeWireLoop& loop) : loop(loop) {}
    /// While the loop runs, without its lock. No callback runs after it: the flow is ended first, by the
    /// thread that carries it. (Once its main loop has stopped, PipeWire calls from its real-time thread
    /// instead.)
    ~PipeWireConsumer();
    PipeWireConsumer(const PipeWireConsumer&) = delete;
    PipeWireConsumer& operator=(const PipeWireConsumer&) = delete;

    enum class Outcome { streaming, noFormat, refused };
    /// Connects and waits until pictures can flow; the first may come later. Under the loop's lock.
    Outcome connect(const Setup& setup, Handlers handlers, double seconds);

private:
    void stateChanged(pw_stream_state state, const char* error);
    void formatChanged(const spa_pod* format);
    void process();
    void hand(const pw_buffer& buffer);

    PipeWireLoop& loop;
    PipeWireHandle<pw_stream> stream;
    spa_hook listener{};
    Handlers handlers;
    bool started = false; ///< `connect` has returned
    bool ended = false;
    std::optional<Outcome> outcome;
    std::vector<PipeWirePicture::Block> blocks; ///< scratch
};

} // namespace RecordCore
