// How near films come to the exact composition of a recording: every frame is composed anew from edge to edge
// and compared with the frame decoded from each film.
//
//   ombrel-bench-quality FOLDER FILM ...         prints, for each film, its PSNR
//   ombrel-bench-quality --frames FOLDER         writes the exact frames to standard output as YUV4MPEG2
//   ombrel-bench-quality --table FOLDER FILM     prints the mean square error of every frame

#include "OmbrelRecord/Entry/Backends.h"
#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Export/LoadedRecording.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace RecordCore;

namespace {

constexpr double fps = 60;

/// Composes the film of a recording as the exporter does, but each frame from nothing.
class ExactFilm {
public:
    ExactFilm(const MediaBackend& media, const std::filesystem::path& folder) :
        recording(LoadedRecording::load(media, folder)), plan(recording.plan()),
        scene(plan, recording.project, recording.log, fps), frames(media.openVideo(recording.files.video())),
        canvas(compositor(media)) {}

    std::int64_t count() const { return scene.frameCount(); }
    int width() const { return canvas.compositor().width(); }
    int height() const { return canvas.compositor().height(); }
    const Picture& frame(std::int64_t index) {
        canvas.invalidate();
        return composeFrame(scene, canvas, frames, camera ? &*camera : nullptr,
                            static_cast<double>(index) / fps);
    }

private:
    std::shared_ptr<const Compositor> compositor(const MediaBackend& media) {
        const auto cameraFile = recording.camera();
        if (cameraFile && recording.project.cameraShow)
            camera.emplace(media.openVideo(*cameraFile), plan,
                           recording.log ? recording.log->cameraOffset.value_or(0) : 0);
        return std::make_shared<const Compositor>(
            Exporter::compositorSettings(plan, recording.project, frames.info(), 1, false, camera.has_value(),
                                         recording.files.video().parent_path()));
    }

    LoadedRecording recording;
    Plan plan;
    Scene scene;
    FrameCursor frames;
    std::optional<CameraSource> camera;
    Canvas canvas;
};

/// Sum of the squared differences of each plane.
std::array<double, 3> errors(const PlanarView& a, const PlanarView& b) {
    std::array<double, 3> sums{};
    for (int plane = 0; plane < 3; ++plane) {
        const auto index = static_cast<std::size_t>(plane);
        std::int64_t sum = 0;
        for (int y = 0; y < a.planeHeight(plane); ++y) {
            const std::uint8_t* p = a.planes[index] + y * a.strides[index];
            const std::uint8_t* q = b.planes[index] + y * b.strides[index];
            std::int32_t row = 0;
            for (int x = 0; x < a.planeWidth(plane); ++x)
                row += (p[x] - q[x]) * (p[x] - q[x]);
            sum += row;
        }
        sums[index] = static_cast<double>(sum);
    }
    return sums;
}

double decibels(double meanSquare) {
    return meanSquare > 0 ? 10 * std::log10(255.0 * 255.0 / meanSquare) : 99;
}

void writeFrames(ExactFilm& film) {
    fmt::print("YUV4MPEG2 W{} H{} F60:1 Ip A1:1 C420mpeg2 XCOLORRANGE=LIMITED\n", film.width(),
               film.height());
    for (std::int64_t i = 0; i < film.count(); ++i) {
        const PlanarView picture = film.frame(i).view();
        fmt::print("FRAME\n");
        for (int plane = 0; plane < 3; ++plane)
            for (int y = 0; y < picture.planeHeight(plane); ++y) {
                const auto index = static_cast<std::size_t>(plane);
                const auto width = static_cast<std::size_t>(picture.planeWidth(plane));
                if (std::fwrite(picture.planes[index] + y * picture.strides[index], 1, width, stdout) !=
                    width)
                    throw RecordingError("standard output cannot be written");
            }
    }
}

void compare(const MediaBackend& media, ExactFilm& film, const std::vector<std::string>& files, bool table) {
    struct Film {
        std::unique_ptr<VideoReader> reader;
        std::array<double, 3> error{};
    };
    std::vector<Film> films;
    for (const std::string& file : files)
        films.push_back({media.openVideo(file), {}});
    const double samples = static_cast<double>(film.width()) * film.height() * 1.5;
    for (std::int64_t i = 0; i < film.count(); ++i) {
        const PlanarView exact = film.frame(i).view();
        for (std::size_t k = 0; k < films.size(); ++k) {
            const std::optional<VideoFrame> shown = films[k].reader->next();
            if (!shown || shown->picture.width != exact.width || shown->picture.height != exact.height)
                throw RecordingError(fmt::format("{} has another shape, or ends at frame {}", files[k], i));
            const std::array<double, 3> error = errors(exact, shown->picture);
            for (std::size_t plane = 0; plane < 3; ++plane)
                films[k].error[plane] += error[plane];
            if (table) fmt::print("{} {:.4f}\n", i, (error[0] + error[1] + error[2]) / samples);
        }
    }
    for (std::size_t k = 0; k < films.size() && !table; ++k) {
        const auto& error = films[k].error;
        const double all = samples * static_cast<double>(film.count());
        fmt::print("{}: {:.2f} dB (luma {:.2f}, chroma {:.2f} and {:.2f})\n", files[k],
                   decibels((error[0] + error[1] + error[2]) / all), decibels(error[0] / all * 1.5),
                   decibels(error[1] / all * 6), decibels(error[2] / all * 6));
    }
}

} // namespace

int main(int argc, char** argv) try {
    std::vector<std::string> words(argv + 1, argv + argc);
    const bool frames = !words.empty() && words[0] == "--frames";
    const bool table = !words.empty() && words[0] == "--table";
    if (frames || table) words.erase(words.begin());
    if (words.empty() || (words.size() == 1) != frames) {
        fmt::print(stderr,
                   "usage: ombrel-bench-quality FOLDER FILM ... | --frames FOLDER | --table FOLDER FILM\n");
        return 2;
    }
    const auto media = OmbrelRecord::makeMediaBackend();
    ExactFilm film(*media, words[0]);
    words.erase(words.begin());
    if (frames)
        writeFrames(film);
    else
        compare(*media, film, words, table);
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "{}\n", error.what());
    return 1;
}
