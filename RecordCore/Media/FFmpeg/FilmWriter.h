#pragma once

#include "RecordCore/Media/FFmpeg/Handles.h"
#include "RecordCore/Media/MovieWriter.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <vector>

namespace RecordCore::FFmpeg {

/// Writes a plain MPEG-4 file with the index at the front, beside its destination, and moves it there when
/// it is whole. What is held back at the start of sound (priming) is noted in an edit list.
class FilmWriter final : public MovieWriter {
public:
    enum class Access { usual, ownerOnly };

    FilmWriter(std::filesystem::path file, Access access);
    ~FilmWriter() override;
    FilmWriter(const FilmWriter&) = delete;
    FilmWriter& operator=(const FilmWriter&) = delete;

    int addTrack(const StreamDescription& stream) override;
    void begin() override;
    void write(int track, const Packet& packet) override;
    void setEnd(int track, std::int64_t pts) override;
    void finish() override;

private:
    struct Track {
        AVStream* stream = nullptr;
        AVRational base{1, 1}; ///< of the packets given to us
        PacketHandle last;     ///< held back until it is known how long it lasts
        std::optional<std::int64_t> end;
    };

    static int putBytes(void* self, std::uint8_t* bytes, int count);
    static std::int64_t seekBytes(void* self, std::int64_t offset, int whence);
    void put(PacketHandle packet, Track& track);
    void check(int code);

    std::filesystem::path file;
    std::filesystem::path temporary;
    std::mutex mutex; ///< guards all that follows
    int descriptor = -1;
    int writeError = 0; ///< errno of the first failed write
    OutputHandle context;
    std::vector<Track> tracks;
    bool begun = false;
    bool finished = false;
};

} // namespace RecordCore::FFmpeg
