#pragma once

#include "RecordCore/Media/StreamDescription.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// Writes an MPEG-4 file that is readable at every moment: the header comes first and knows nothing of what
/// follows, then fragments of at most a second, each handed to the operating system in one piece (ISO/IEC
/// 14496-12, movie fragments). Whatever kills the program, what was handed over stays.
///
/// `write` and `tick` may be called from several threads; the rest from one. Throws RecordingError that names
/// the file and the cause; after a failed write the file ends with the last whole fragment, and every later
/// write fails in the same way.
class FragmentWriter {
public:
    /// Replaces the file. It is readable by its owner only.
    explicit FragmentWriter(std::filesystem::path file);
    ~FragmentWriter();
    FragmentWriter(const FragmentWriter&) = delete;
    FragmentWriter& operator=(const FragmentWriter&) = delete;

    int addTrack(const StreamDescription& stream);
    void begin();
    /// Times may not go back within a track. A packet before time 0 (priming aside) is left out.
    void write(int track, const Packet& packet);
    void tick();
    void flushNow(); ///< see MovieWriter::flush
    /// Writes what is pending and closes the file.
    void close();

private:
    using Clock = std::chrono::steady_clock;

    struct Sample {
        std::int64_t dts = 0; ///< from the track's beginning, priming included
        std::int64_t duration = 0;
        std::int32_t reorder = 0; ///< pts − dts
        std::uint32_t size = 0;
        bool key = false;
    };
    struct Track {
        StreamDescription stream;
        std::vector<Sample> samples; ///< of the fragment under way
        std::vector<std::uint8_t> data;
    };

    std::vector<std::uint8_t> header() const;
    void flush();
    void put(const std::vector<std::uint8_t>& bytes);

    std::filesystem::path file;
    std::mutex mutex; ///< guards all that follows
    int descriptor = -1;
    std::vector<Track> tracks;
    std::optional<Clock::time_point> oldest; ///< when the first pending packet came
    std::uint32_t sequence = 0;
    std::int64_t length = 0; ///< bytes written in whole pieces
    std::string failure;     ///< why writing failed, empty while it works
    std::vector<std::uint8_t> fragment;
};

} // namespace RecordCore
