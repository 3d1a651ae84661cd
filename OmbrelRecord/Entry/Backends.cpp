#include "OmbrelRecord/Entry/Backends.h"

#include "OmbrelRecord/Entry/Module.h"
#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "RecordCore/Model/RecordingError.h"

#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

/// Stands in for the media module, which takes a hundred libraries with it, until something is to be read or
/// written.
class LaterMedia final : public MediaBackend {
public:
    SourceInfo sourceInfo(const std::filesystem::path& file) const override {
        return media().sourceInfo(file);
    }

    std::unique_ptr<VideoReader> openVideo(const std::filesystem::path& file, int threads) const override {
        loadKernels();
        return media().openVideo(file, threads);
    }

    std::vector<std::unique_ptr<SoundReader>> openSound(const std::filesystem::path& file) const override {
        return media().openSound(file);
    }

    std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings,
                                                   PacketSink sink) const override {
        return media().makeVideoEncoder(settings, std::move(sink));
    }

    std::unique_ptr<SoundEncoder> makeSoundEncoder(std::int64_t bitrate, PacketSink sink) const override {
        return media().makeSoundEncoder(bitrate, std::move(sink));
    }

    std::unique_ptr<MovieWriter> createMovie(const std::filesystem::path& file,
                                             MovieLayout layout) const override {
        return media().createMovie(file, layout);
    }

    std::unique_ptr<TimeStretcher> makeTimeStretcher() const override { return media().makeTimeStretcher(); }

    bool recoverMovie(const std::filesystem::path& file) const override { return media().recoverMovie(file); }

private:
    static const MediaBackend& media() {
        static const std::unique_ptr<const MediaBackend> backend = module<Modules::Media>().media();
        return *backend;
    }
};

} // namespace

std::shared_ptr<const MediaBackend> makeMediaBackend() {
    return std::make_shared<LaterMedia>();
}

void loadKernels() {
    module<Modules::Kernels>();
}

void loadMedia() {
    try {
        module<Modules::Media>();
    } catch (const RecordingError&) {
        // Whoever needs it is told.
    }
}

bool verifySignature(std::string_view bytes, std::string_view signature, std::string_view publicKey) {
    return module<Modules::Signature>().isSigned(bytes, signature, publicKey);
}

} // namespace OmbrelRecord
