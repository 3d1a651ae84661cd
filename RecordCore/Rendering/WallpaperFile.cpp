#include "RecordCore/Rendering/WallpaperFile.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <string_view>

namespace RecordCore {

namespace {

struct Release {
    void operator()(GdkPixbuf* pixbuf) const { g_object_unref(pixbuf); }
};
using Pixbuf = std::unique_ptr<GdkPixbuf, Release>;

constexpr std::uintmax_t largestFile = std::uintmax_t{256} << 20;
constexpr int longestSide = 40000;
constexpr double mostPixels = 400e6;
/// Above this an image is reduced while it is read.
constexpr double comfortablePixels = 40e6;

} // namespace

std::optional<RgbImage> WallpaperFile::load(const std::filesystem::path& file, int width, int height) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
    const std::uintmax_t bytes = std::filesystem::file_size(file, error);
    if (error || bytes > largestFile) return std::nullopt;

    int imageWidth = 0;
    int imageHeight = 0;
    GdkPixbufFormat* format = gdk_pixbuf_get_file_info(file.c_str(), &imageWidth, &imageHeight);
    if (!format) return std::nullopt;
    gchar* formatName = gdk_pixbuf_format_get_name(format);
    const std::string_view kind(formatName);
    const bool known = kind == "png" || kind == "jpeg" || kind == "webp";
    g_free(formatName);
    const double count = static_cast<double>(imageWidth) * imageHeight;
    if (!known || imageWidth < 1 || imageHeight < 1 || imageWidth > longestSide ||
        imageHeight > longestSide || count > mostPixels)
        return std::nullopt;

    Pixbuf pixbuf;
    if (count > comfortablePixels) {
        // Wide enough for either orientation; the exact size is made by the compositor's own scaling.
        const double cover = 2.0 * std::max(width, height) / std::min(imageWidth, imageHeight);
        const double reduction = std::min({cover, std::sqrt(comfortablePixels / count), 1.0});
        pixbuf.reset(gdk_pixbuf_new_from_file_at_scale(
            file.c_str(), std::max(static_cast<int>(imageWidth * reduction), 1),
            std::max(static_cast<int>(imageHeight * reduction), 1), FALSE, nullptr));
    } else {
        pixbuf.reset(gdk_pixbuf_new_from_file(file.c_str(), nullptr));
    }
    if (!pixbuf) return std::nullopt;
    if (GdkPixbuf* upright = gdk_pixbuf_apply_embedded_orientation(pixbuf.get())) pixbuf.reset(upright);

    RgbImage image;
    image.width = gdk_pixbuf_get_width(pixbuf.get());
    image.height = gdk_pixbuf_get_height(pixbuf.get());
    const int channels = gdk_pixbuf_get_n_channels(pixbuf.get());
    const int stride = gdk_pixbuf_get_rowstride(pixbuf.get());
    const guint8* pixels = gdk_pixbuf_read_pixels(pixbuf.get());
    if (channels < 3 || gdk_pixbuf_get_bits_per_sample(pixbuf.get()) != 8) return std::nullopt;
    image.pixels.resize(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) * 3);
    std::uint8_t* out = image.pixels.data();
    for (int y = 0; y < image.height; ++y) {
        const guint8* in = pixels + static_cast<std::ptrdiff_t>(y) * stride;
        for (int x = 0; x < image.width; ++x, in += channels, out += 3) {
            const int alpha = channels == 4 ? in[3] : 255;
            for (int i = 0; i < 3; ++i)
                out[i] = static_cast<std::uint8_t>((in[i] * alpha + 127) / 255);
        }
    }
    return image;
}

} // namespace RecordCore
