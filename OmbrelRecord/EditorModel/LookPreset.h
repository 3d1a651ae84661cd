#pragma once

#include "RecordCore/Model/Project.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// The fields of a project that make its look, under a name. What they mean is said at `Project`; nothing
/// about the contents of a recording is among them, so that a look suits any.
struct LookPreset {
    std::string name;
    std::optional<std::string> wallpaperPreset;
    std::optional<std::string> wallpaper; ///< a file, with its whole path
    std::optional<std::string> solidColor;
    std::string backdrop = "night";
    double backgroundBlur = 0;
    double padding = 0.04;
    double radius = 0.62;
    double shadow = 0.5;
    double cursorSize = 1.6;
    std::string cursorStyle = "arrow";
    std::string clickEffect = "ripple";
    double clickBounce = 0.6;
    std::string cameraShape = "circle";
    bool cameraBorder = false;
    std::string captionStyle = "highlight";
    double captionSize = 0.045;
    double captionBottom = 0.08;

    /// The look of a project. A relative wallpaper is taken from `folder`, the recording's folder.
    static LookPreset of(const RecordCore::Project& project, std::string name,
                         const std::filesystem::path& folder);

    /// Gives the project this look; everything else of it stays.
    void applyTo(RecordCore::Project& project) const;

    /// The looks that come with the program, in menu order; names in English.
    static const std::vector<LookPreset>& builtIn();

    bool operator==(const LookPreset&) const = default;
};

/// Looks in a file. Numbers outside of what sliders give are kept as they are: what draws them limits them.
namespace LookPresetFile {

struct Contents {
    std::vector<LookPreset> looks;
    std::string problem; ///< what could not be read, or empty
};

/// Reads the file; one that is missing holds no looks. Looks that cannot be read are left out and named in
/// `problem`.
Contents load(const std::filesystem::path& file);

/// Writes the file atomically and makes its folder. Throws RecordingError.
void save(const std::filesystem::path& file, const std::vector<LookPreset>& looks);

} // namespace LookPresetFile
} // namespace OmbrelRecord
