#pragma once

#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/Support/TemporaryFolder.h"

#include <filesystem>
#include <memory>

/// The sample recording, or the one that OMBREL_RECORDING names, copied and opened for editing.
class EditorFixture {
public:
    EditorFixture();

    OmbrelRecord::EditorModel& model() { return *editor; }
    std::filesystem::path folder() const { return place / "Recording"; }
    std::filesystem::path films() const { return place / "Films"; }
    OmbrelRecord::EditorParts& parts() { return given; }
    const RecordCore::MediaBackend& backend() const { return media; }
    /// Opens it again, with the parts as they are now.
    void reopen();

private:
    class QuietDesktop : public OmbrelRecord::Desktop {
    public:
        void reveal(const std::filesystem::path&) override {}
        void copyFile(const std::filesystem::path&) override {}
        void trash(const std::filesystem::path&) override {}
    };

    TemporaryFolder place;
    RealMedia media;
    QuietDesktop desktop;
    OmbrelRecord::EditorParts given;
    std::unique_ptr<OmbrelRecord::EditorModel> editor;
};
