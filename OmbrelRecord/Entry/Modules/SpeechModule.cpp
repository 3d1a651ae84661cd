#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "OmbrelRecord/Transcriber/PocketSphinx/PocketSphinxEngine.h"

namespace {

std::unique_ptr<OmbrelRecord::SpeechEngine> speech(const RecordCore::MediaBackend& media) {
    using OmbrelRecord::PocketSphinxEngine;
    return std::make_unique<PocketSphinxEngine>(media, PocketSphinxEngine::standardFolders());
}

} // namespace

OMBREL_MODULE const OmbrelRecord::Modules::Speech ombrelModule{
    {OmbrelRecord::Modules::Speech::file, OMBREL_VERSION}, speech};
