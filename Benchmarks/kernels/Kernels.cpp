// Composes 1920 × 1080 frames from screens of two sizes. All figures are CPU milliseconds of one thread for
// a frame; "yardstick" copies a frame of the same size, to compare machines by.

#include "RecordCore/Rendering/Kernels/Kernels.h"
#include "RecordCore/Rendering/Canvas.h"
#include "RecordCore/Rendering/RgbImage.h"
#include "RecordCore/Rendering/Wallpapers.h"
#include "Tests/Rendering/SamplePictures.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string>

using namespace RecordCore;

namespace {

CompositorSettings settingsFor(int width, int height) {
    CompositorSettings settings;
    settings.sourceAspect = static_cast<double>(width) / height;
    settings.look.padding = 0.011;
    settings.look.radius = 0.0124;
    settings.look.blur = 4.8;
    return settings;
}

std::shared_ptr<const Compositor> compositorFor(const benchmark::State& run) {
    return std::make_shared<const Compositor>(
        settingsFor(static_cast<int>(run.range(0)), static_cast<int>(run.range(1))));
}

Picture sourceFor(const benchmark::State& run) {
    return SamplePictures::screen(static_cast<int>(run.range(0)), static_cast<int>(run.range(1)));
}

/// The camera moves: everything in the window is new.
void movingView(benchmark::State& run) {
    Canvas canvas(compositorFor(run), 1);
    const Picture source = sourceFor(run);
    FrameState state;
    const double size = static_cast<double>(run.range(2)) / 100;
    int frame = 0;
    for (auto _ : run) {
        state.view = {0.1 + 0.0001 * (frame++ % 100), 0.1, size, size};
        if (run.range(2) == 100) state.view = {0.001 * (frame % 2), 0, 1, 1};
        canvas.frame(source.view(), state);
    }
    run.SetLabel(Kernels::targetName());
}

/// The view rests, the pointer moves and a few lines of the screen change with every frame.
void restingView(benchmark::State& run) {
    Canvas canvas(compositorFor(run), 1);
    std::array<Picture, 2> sources{sourceFor(run), sourceFor(run)};
    SamplePictures::scribble(sources[1], 300, 400, 500, 40, 3);
    FrameState state;
    int frame = 0;
    for (auto _ : run) {
        state.pointer = FrameState::Pointer{0.3 + 0.001 * (frame % 300), 0.5, 1};
        canvas.frame(sources[static_cast<std::size_t>(frame % 2)].view(), state);
        ++frame;
    }
}

/// Only the pointer moves, over the same picture.
void movingPointer(benchmark::State& run) {
    Canvas canvas(compositorFor(run), 1);
    const Picture source = sourceFor(run);
    FrameState state;
    canvas.frame(source.view(), state);
    int frame = 0;
    for (auto _ : run) {
        state.pointer = FrameState::Pointer{0.3 + 0.001 * (frame++ % 300), 0.5, 1};
        canvas.frame(source.view(), state, nullptr, {true, true});
    }
}

/// Nothing changes, and the canvas is not told so.
void nothingNew(benchmark::State& run) {
    Canvas canvas(compositorFor(run), 1);
    const Picture source = sourceFor(run);
    for (auto _ : run)
        canvas.frame(source.view(), {});
}

/// The camera bubble gives way while the view moves.
void shrinkingBubble(benchmark::State& run) {
    CompositorSettings settings = settingsFor(1920, 1080);
    settings.camera = CameraStyle{};
    Canvas canvas(std::make_shared<const Compositor>(settings), 1);
    const Picture source = SamplePictures::screen(1920, 1080);
    const Picture face = SamplePictures::screen(1280, 720, 8);
    const PlanarView view = face.view();
    FrameState state;
    int frame = 0;
    for (auto _ : run) {
        state.cameraScale = 0.76 + 0.002 * (frame++ % 100);
        canvas.frame(source.view(), state, &view, {frame > 1, frame > 1});
    }
}

void preparing(benchmark::State& run) {
    CompositorSettings settings = settingsFor(1920, 1080);
    settings.scale = static_cast<double>(run.range(0));
    settings.look.shadow = 0.5;
    settings.camera = CameraStyle{};
    for (auto _ : run)
        benchmark::DoNotOptimize(std::make_unique<Compositor>(settings));
}

void drawingWallpaper(benchmark::State& run) {
    const auto& entry = Wallpapers::all()[static_cast<std::size_t>(run.range(0))];
    for (auto _ : run)
        benchmark::DoNotOptimize(
            Wallpapers::draw(entry.name, static_cast<int>(run.range(1)), static_cast<int>(run.range(2))));
    run.SetLabel(std::string(entry.name));
}

/// The first wallpaper of every family, in two sizes.
void everyFamily(benchmark::internal::Benchmark* benchmark) {
    std::string_view last;
    for (std::size_t i = 0; i < Wallpapers::all().size(); ++i) {
        if (Wallpapers::all()[i].family == last) continue;
        last = Wallpapers::all()[i].family;
        benchmark->Args({static_cast<std::int64_t>(i), 1920, 1080});
        benchmark->Args({static_cast<std::int64_t>(i), 3840, 2160});
    }
}

void toScreen(benchmark::State& run) {
    const Picture picture = SamplePictures::screen(1200, 676);
    std::vector<std::uint8_t> pixels(1200 * 676 * 4);
    for (auto _ : run)
        toBgra(picture.view(), pixels.data(), 1200 * 4, 0, 676);
}

void yardstick(benchmark::State& run) {
    const Picture source = SamplePictures::screen(1920, 1080);
    Picture copy;
    for (auto _ : run) {
        copy.assign(source.view());
        benchmark::ClobberMemory();
    }
}

BENCHMARK(movingView)
    ->ArgNames({"width", "height", "view"})
    ->Args({1920, 1080, 100})
    ->Args({1920, 1080, 60})
    ->Args({3024, 1964, 100})
    ->Args({3024, 1964, 60})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(restingView)->Args({1920, 1080})->Args({3024, 1964})->Unit(benchmark::kMillisecond);
BENCHMARK(movingPointer)->Args({1920, 1080})->Args({3024, 1964})->Unit(benchmark::kMillisecond);
BENCHMARK(nothingNew)->Args({1920, 1080})->Args({3024, 1964})->Unit(benchmark::kMillisecond);
BENCHMARK(shrinkingBubble)->Unit(benchmark::kMillisecond);
BENCHMARK(preparing)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(drawingWallpaper)->Apply(everyFamily)->Unit(benchmark::kMillisecond);
BENCHMARK(toScreen)->Unit(benchmark::kMillisecond);
BENCHMARK(yardstick)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
