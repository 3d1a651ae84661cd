// How long it takes to plan an hour's recording: segments, shots, camera path and pointer track at 60 fps.

#include "RecordCore/Motion/Scene.h"
#include "RecordCore/Planning/Planner.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

using namespace RecordCore;

namespace {

constexpr double hour = 3600;

/// 54,000 activity samples: busy, still and mixed stretches.
std::vector<ActivitySample> anHoursActivity() {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> share(0, 1);
    std::vector<ActivitySample> samples;
    for (int i = 0; i < hour * 15; ++i) {
        const double t = i / 15.0;
        const bool busy = std::fmod(t, 90) < 50;
        ActivitySample sample{t, busy ? share(random) * 0.1 : 0, std::nullopt};
        if (busy) sample.focus = NRect{share(random) * 0.7, share(random) * 0.7, 0.2, 0.2};
        samples.push_back(sample);
    }
    return samples;
}

/// 216,000 pointer samples and 20,000 events.
InputLog anHoursLog() {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> share(0, 1);
    InputLog log;
    log.keysTracked = true;
    log.cursorInVideo = false;
    for (int i = 0; i < hour * 60; ++i) {
        const double t = i / 60.0;
        const double angle = std::fmod(t, 60) < 25 ? t : std::floor(t / 60);
        log.cursor.push_back({t, 0.5 + 0.4 * std::cos(angle), 0.5 + 0.4 * std::sin(angle)});
    }
    for (int i = 0; i < 20000; ++i) {
        const double t = i * hour / 20000;
        if (i % 4 == 0)
            log.events.push_back({t, InputLog::Event::Kind::click, share(random), share(random)});
        else
            log.events.push_back({t, InputLog::Event::Kind::key, std::nullopt, std::nullopt});
    }
    return log;
}

void planAnHour(benchmark::State& state) {
    const SourceInfo info{1920, 1080, hour, 60, true};
    const auto samples = anHoursActivity();
    const std::optional<InputLog> log = anHoursLog();
    const Project project;
    for (auto _ : state) {
        const Plan plan = Planner::plan(info, samples, log, project, 16.0 / 9);
        const Scene scene(plan, project, log, 60);
        benchmark::DoNotOptimize(scene.frameCount());
    }
}

} // namespace

BENCHMARK(planAnHour)->Unit(benchmark::kMillisecond);
