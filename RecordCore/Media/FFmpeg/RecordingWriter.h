#pragma once

#include "RecordCore/Media/FragmentWriter.h"
#include "RecordCore/Media/MovieWriter.h"

#include <filesystem>
#include <map>

namespace RecordCore::FFmpeg {

/// Writes fragments while the recording runs and turns them into a plain file at the end.
class RecordingWriter final : public MovieWriter {
public:
    explicit RecordingWriter(const std::filesystem::path& file);

    int addTrack(const StreamDescription& stream) override;
    void begin() override { fragments.begin(); }
    void write(int track, const Packet& packet) override { fragments.write(track, packet); }
    void tick() override { fragments.tick(); }
    void flush() override { fragments.flushNow(); }
    void setEnd(int track, std::int64_t pts) override;
    void finish() override;

private:
    std::filesystem::path file;
    FragmentWriter fragments;
    std::vector<TimeBase> bases;
    std::map<int, double> ends; ///< seconds, by track
};

/// Rewrites a file of fragments as a plain one, in place and atomically, without encoding anything anew.
/// `ends` says where tracks end (seconds); the picture lasts at least as long as the sound. Throws
/// RecordingError; the file is then as it was.
void makePlain(const std::filesystem::path& file, const std::map<int, double>& ends);

/// See MediaBackend::recoverMovie.
bool recoverMovie(const std::filesystem::path& file);

} // namespace RecordCore::FFmpeg
