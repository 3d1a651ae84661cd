#pragma once

#include "RecordCore/Media/FFmpeg/Handles.h"
#include "RecordCore/Model/SourceInfo.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <vector>

namespace RecordCore::FFmpeg {

/// How the stored picture is turned to stand upright: out(x, y) = in(u, v), where (u, v) is (x, y) after an
/// optional mirroring of each axis of the output and an optional exchange of the two.
struct Orientation {
    bool transpose = false;
    bool flipX = false; ///< along the output's x axis
    bool flipY = false; ///< along the output's y axis

    bool upright() const { return !transpose && !flipX && !flipY; }
    bool operator==(const Orientation&) const = default;
};

/// Limits on what a file may claim about itself, so that a broken one fails early and in few words.
inline constexpr int longestSide = 16384;
inline constexpr std::int64_t mostPixels = std::int64_t{1} << 27;
inline constexpr double longestDuration = 100 * 3600.0;

/// A media file opened for reading its packets: a regular local file of a kind on our list. One thread at a
/// time. Throws RecordingError "file: cause".
class InputFile {
public:
    explicit InputFile(std::filesystem::path file);

    const std::filesystem::path& path() const { return file; }
    AVFormatContext* context() const { return handle.get(); }

    /// The track that is the picture (no cover art); null when there is none.
    AVStream* video() const { return videoStream; }
    /// The picture's track, or an error that says that the file has none.
    AVStream* needVideo() const;
    std::vector<AVStream*> sounds() const;

    /// Facts of the picture's track. Throws when there is no picture or its claims are absurd.
    SourceInfo info();
    Orientation orientation() const;
    /// The stored picture's size with square pixels, not turned yet.
    int squareWidth() const { return storedWidth; }
    int squareHeight() const { return storedHeight; }
    /// Presentation time of the first picture, in the video stream's time base: 0 of our time axis. 0 when
    /// there is no picture. Reads the first packets; they are kept and read again by `read`.
    std::int64_t origin();

    /// Where a track ends, in seconds on the file's own clock, as far as the file says.
    double endOf(const AVStream* stream) const;

    /// Only packets of this track are wanted from now on.
    void select(const AVStream* stream);
    /// The next packet, of any wanted track; false at the end. A read error inside a damaged file counts as
    /// its end; an error of the disk throws.
    bool read(AVPacket& packet);
    /// Goes to the last key packet at or before `timestamp` (in the stream's time base); false on failure.
    bool seek(const AVStream* stream, std::int64_t timestamp);

private:
    bool readFromFile(AVPacket& packet);
    void checkFile() const;
    void checkSize(double width, double height) const;
    void measurePicture();
    void checkWhole() const;
    double measureDuration(double& averageRate);

    std::filesystem::path file;
    InputHandle handle;
    AVStream* videoStream = nullptr;
    int storedWidth = 0;
    int storedHeight = 0;
    bool originKnown = false;
    std::int64_t originTicks = 0;
    std::deque<PacketHandle> pending; ///< read ahead to learn the origin
};

} // namespace RecordCore::FFmpeg
