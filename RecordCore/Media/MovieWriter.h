#pragma once

#include "RecordCore/Media/StreamDescription.h"

namespace RecordCore {

enum class MovieLayout {
    /// A finished film: written under another name beside the destination and moved there, whole, by
    /// `finish`; the index stands at the front. Without `finish` nothing is left behind and an old file at
    /// the destination is untouched.
    film,
    /// A film that its owner alone may read, for sound that passes through a folder shared by all users.
    privateFilm,
    /// A recording in progress: written in place, in fragments of at most one second that are handed to the
    /// operating system as they come (`tick` closes a fragment when no packet arrives), so that the file is
    /// readable up to the last second after a crash. `finish` replaces it by a plain MP4 with the index at
    /// the
    /// front. Readable by its owner only.
    recording,
};

/// Writes packets into an MPEG-4 file. `write` may be called from several threads; the rest from one.
/// Times are exact: what has pts 0 is shown and heard at 0 in common players, with B frames and AAC priming
/// (no edit list that shifts sound against picture). Throws RecordingError that names the file and the cause.
class MovieWriter {
public:
    virtual ~MovieWriter() = default;

    /// All tracks are added before `begin`. Returns the track's number.
    virtual int addTrack(const StreamDescription& stream) = 0;
    virtual void begin() = 0;
    virtual void write(int track, const Packet& packet) = 0;
    /// Recording only: closes and flushes the current fragment if it is older than a second.
    virtual void tick() {}
    /// Recording only: closes and flushes the current fragment, however young. For a recorder that knows that
    /// nothing more comes for a while.
    virtual void flush() {}
    /// Where the last packet of a track ends, in the track's time base. Without it the last packet's own
    /// duration counts; a recorder that learns only at the stop how long the last frame stood tells it here,
    /// before `finish`.
    virtual void setEnd(int track, std::int64_t pts) = 0;
    /// Film: completes the file and moves it into place. Recording: what is on the disk stays readable
    /// whatever happens here; when there is no room for the plain copy the fragments are kept as they are.
    virtual void finish() = 0;
};

} // namespace RecordCore
