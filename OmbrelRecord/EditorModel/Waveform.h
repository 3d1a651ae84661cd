#pragma once

#include "OmbrelRecord/AppModel/Disposal.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "RecordCore/Media/MediaBackend.h"

#include <QtCore/QObject>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace OmbrelRecord {

/// How loud a recording is over time, all its sound tracks together: 100 peaks a second. Read once, on a
/// thread of its own, and kept in a file for the next time. Main thread.
class Waveform : public QObject {
    Q_OBJECT

public:
    static constexpr int perSecond = 100;

    /// Starts reading at once. `media` must outlive the object, and the disposal, where the reading may come
    /// to its end. `cache` is a folder, which need not exist; with an empty one nothing is kept.
    Waveform(const RecordCore::MediaBackend& media, const std::filesystem::path& video, double duration,
             const std::filesystem::path& cache = {}, Disposal* disposal = nullptr,
             QObject* parent = nullptr);
    ~Waveform() override;

    /// Known up to this time; the rest is still being read.
    double known() const { return static_cast<double>(peaks.size()) / perSecond; }
    bool complete() const { return finished; }
    /// Whether anything was heard so far.
    bool sounds() const { return loudest > 0; }
    /// The loudest sample of a stretch, 0…1; the stretch counts as at least one peak wide.
    double peak(double from, double to) const;
    double highest() const { return loudest / 255.0; }

Q_SIGNALS:
    /// More is known: now and then while reading, and at its end.
    void changed();

private:
    class Reading;

    void add(const std::vector<std::uint8_t>& more, bool last);

    std::vector<std::uint8_t> peaks;
    std::vector<std::uint8_t> coarse; ///< the loudest of every 64 peaks
    std::uint8_t loudest = 0;
    bool finished = false;
    Mailbox mailbox;
    std::shared_ptr<Reading> reading;
    Disposal* disposal;
};

} // namespace OmbrelRecord
