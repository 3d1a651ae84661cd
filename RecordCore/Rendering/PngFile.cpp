#include "RecordCore/Rendering/PngFile.h"

#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/Uuid.h"

#include <fmt/format.h>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <string>

namespace RecordCore {

void writePng(const std::filesystem::path& file, const RgbImage& image) {
    if (image.width <= 0 || image.height <= 0)
        throw RecordingError(fmt::format("{}: cannot be written: the picture is empty", file.string()));
    GdkPixbuf* pixbuf =
        gdk_pixbuf_new_from_data(image.pixels.data(), GDK_COLORSPACE_RGB, FALSE, 8, image.width, image.height,
                                 image.width * 3, nullptr, nullptr);
    const std::filesystem::path temporary =
        file.parent_path() /
        fmt::format(".{}.{}", file.filename().string(), Uuid::fresh().text().substr(0, 8));
    GError* problem = nullptr;
    const bool saved =
        gdk_pixbuf_save(pixbuf, temporary.c_str(), "png", &problem, "compression", "6", nullptr) == TRUE;
    g_object_unref(pixbuf);
    std::error_code error;
    if (!saved) {
        const std::string cause = problem ? problem->message : "unknown cause";
        if (problem) g_error_free(problem);
        std::filesystem::remove(temporary, error);
        throw RecordingError(fmt::format("{}: cannot be written: {}", file.string(), cause));
    }
    std::filesystem::rename(temporary, file, error);
    if (error) {
        const std::string cause = error.message();
        std::filesystem::remove(temporary, error);
        throw RecordingError(fmt::format("{}: cannot be written: {}", file.string(), cause));
    }
}

} // namespace RecordCore
