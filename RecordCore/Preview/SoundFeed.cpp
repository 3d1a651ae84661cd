#include "RecordCore/Preview/SoundFeed.h"

#include "RecordCore/Media/SoundReader.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace RecordCore {

namespace {

constexpr std::int64_t ringFrames = soundRate * 2;
constexpr std::int64_t block = 1024; ///< positions made at a time
constexpr std::int64_t enough = soundRate / 10;

std::size_t place(std::int64_t position) {
    return static_cast<std::size_t>(position % ringFrames) * soundChannels;
}

} // namespace

SoundFeed::SoundFeed(Opener opener, std::function<void()> newsHandler) :
    open(std::move(opener)), news(std::move(newsHandler)),
    ring(static_cast<std::size_t>(ringFrames) * soundChannels) {
    thread = std::thread([this] { run(); });
}

SoundFeed::~SoundFeed() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    wake.notify_all();
    thread.join();
}

void SoundFeed::retime(const Composition& composition) {
    {
        const std::lock_guard lock(mutex);
        film = composition;
        ++serial;
        made = taken;
    }
    wake.notify_all();
}

void SoundFeed::play(std::int64_t position) {
    {
        const std::lock_guard lock(mutex);
        taken = made = std::max<std::int64_t>(position, 0);
        ++serial;
        playing = true;
    }
    wake.notify_all();
}

void SoundFeed::stop() {
    const std::lock_guard lock(mutex);
    playing = false;
}

bool SoundFeed::ready() const {
    const std::lock_guard lock(mutex);
    return silent || made - taken >= enough;
}

void SoundFeed::take(std::span<float> samples) {
    const auto wanted = static_cast<std::int64_t>(samples.size() / soundChannels);
    std::int64_t had = 0;
    {
        const std::lock_guard lock(mutex);
        had = std::clamp<std::int64_t>(made - taken, 0, wanted);
        for (std::int64_t done = 0; done < had;) {
            const std::int64_t part = std::min(had - done, ringFrames - (taken + done) % ringFrames);
            std::copy_n(ring.begin() + static_cast<std::ptrdiff_t>(place(taken + done)), part * soundChannels,
                        samples.begin() + done * soundChannels);
            done += part;
        }
        taken += wanted;
    }
    std::fill(samples.begin() + had * soundChannels, samples.end(), 0.0F);
    wake.notify_all();
}

bool SoundFeed::wantsMore() const {
    return playing && !silent && made - taken <= ringFrames - 2 * block;
}

void SoundFeed::run() {
    std::unique_ptr<RetimedSound> sound;
    try {
        sound = open();
    } catch (const std::exception&) {
        // The film goes on without sound.
    }
    std::vector<float> samples(static_cast<std::size_t>(block) * soundChannels);
    std::unique_lock lock(mutex);
    silent = !sound;
    if (silent) {
        lock.unlock();
        news();
        return;
    }
    while (true) {
        wake.wait(lock, [this] { return ending || film || wantsMore(); });
        if (ending) return;
        if (film) {
            const Composition next = *std::exchange(film, std::nullopt);
            lock.unlock();
            sound->retime(next);
            lock.lock();
            continue;
        }
        // What should have been heard by now is left out.
        const std::int64_t from = made = std::max(made, taken);
        const std::uint64_t order = serial;
        lock.unlock();
        try {
            sound->read(from, samples);
        } catch (const std::exception&) {
            std::fill(samples.begin(), samples.end(), 0.0F); // a damaged stretch of the file
        }
        lock.lock();
        if (order != serial) continue;
        for (std::int64_t i = 0; i < block; ++i)
            std::copy_n(samples.begin() + i * soundChannels, soundChannels,
                        ring.begin() + static_cast<std::ptrdiff_t>(place(from + i)));
        const bool wasReady = made - taken >= enough;
        made = from + block;
        if (!wasReady && made - taken >= enough) {
            lock.unlock();
            news();
            lock.lock();
        }
    }
}

} // namespace RecordCore
