#pragma once

#include "RecordCore/Media/MediaBackend.h"

/// The media layer as the program uses it.
class RealMedia : public RecordCore::MediaBackend {
public:
    RecordCore::SourceInfo sourceInfo(const std::filesystem::path& file) const override;
    std::unique_ptr<RecordCore::VideoReader> openVideo(const std::filesystem::path& file,
                                                       int threads = 0) const override;
    std::vector<std::unique_ptr<RecordCore::SoundReader>>
    openSound(const std::filesystem::path& file) const override;
    std::unique_ptr<RecordCore::VideoEncoder> makeVideoEncoder(const RecordCore::VideoSettings& settings,
                                                               RecordCore::PacketSink sink) const override;
    std::unique_ptr<RecordCore::SoundEncoder> makeSoundEncoder(std::int64_t bitrate,
                                                               RecordCore::PacketSink sink) const override;
    std::unique_ptr<RecordCore::MovieWriter> createMovie(const std::filesystem::path& file,
                                                         RecordCore::MovieLayout layout) const override;
    std::unique_ptr<RecordCore::TimeStretcher> makeTimeStretcher() const override;
    bool recoverMovie(const std::filesystem::path& file) const override;
};
