#pragma once

#include "RecordCore/Rendering/RgbPlanes.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace RecordCore {

/// The wallpapers that are drawn by the program, by name. A wallpaper is the same composition at every size
/// and in every format, down to the pixel on every machine. Pure; callable from any thread.
namespace Wallpapers {

struct Entry {
    std::string_view name;   ///< stored in projects
    std::string_view title;  ///< shown, in English
    std::string_view family; ///< shown, in English; members of a family stand together
};

/// All wallpapers in menu order.
std::span<const Entry> all();

/// Whether there is one of that name.
bool exists(std::string_view name);

/// The wallpaper of that name at that size, at least one pixel each way; none when there is no such name.
/// Takes about a tenth of a second of one core for two million pixels: keep what it gives. `check` is called
/// now and then on the way; what it throws goes through.
std::optional<RgbPlanes> draw(std::string_view name, int width, int height,
                              const std::function<void()>& check = {});

/// The largest wallpaper that is kept, in pixels: the size of a preview. One for a film is drawn once, and
/// would only take memory.
inline constexpr double mostKept = 1.5e6;

/// As `draw`, but of those up to `mostKept` the last two are not drawn again, so that editing a film under
/// one does not wait for it. Null when there is no such name, or when it is larger.
std::shared_ptr<const RgbPlanes> kept(std::string_view name, int width, int height,
                                      const std::function<void()>& check = {});

/// Whether dark marks belong on it, judged as the compositor judges a whole canvas; false when there is no
/// such name. Draws a small one: keep the answer.
bool isLight(std::string_view name);

} // namespace Wallpapers

} // namespace RecordCore
