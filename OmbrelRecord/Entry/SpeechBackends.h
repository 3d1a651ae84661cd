#pragma once

#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"
#include "RecordCore/Media/MediaBackend.h"

#include <memory>

namespace OmbrelRecord {

/// The speech recognition of this build, best engine first: a whisper.cpp program when the user has one and
/// names a model (WhisperEngine::Settings::fromEnvironment), else PocketSphinx. The media backend must
/// outlive it.
std::unique_ptr<SpeechEngine> makeSpeechEngine(const RecordCore::MediaBackend& media);

} // namespace OmbrelRecord
