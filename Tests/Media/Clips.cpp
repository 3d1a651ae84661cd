#include "Tests/Media/Clips.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace RecordCore;

void ffmpeg(const std::string& arguments) {
    const std::string command = "ffmpeg -nostdin -hide_banner -loglevel error -y " + arguments;
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

std::string ffprobe(const std::string& arguments) {
    const std::string command = "ffprobe -v error -of csv=p=0 " + arguments;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) throw std::runtime_error("failed: " + command);
    std::string text;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
        text.append(buffer.data(), count);
    if (::pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
    return text;
}

std::array<double, 3> patch(const PlanarView& picture, double x, double y) {
    std::array<double, 3> mean{};
    for (int plane = 0; plane < 3; ++plane) {
        const auto column = static_cast<int>(x * picture.planeWidth(plane));
        const auto row = static_cast<int>(y * picture.planeHeight(plane));
        const auto index = static_cast<std::size_t>(plane);
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                mean[index] += picture.planes[index][(row + dy) * picture.strides[index] + column + dx] / 9.0;
    }
    return mean;
}

std::array<double, 3> bt709(double red, double green, double blue) {
    const double luma = (0.2126 * red + 0.7152 * green + 0.0722 * blue) / 255;
    return {16 + 219 * luma, 128 + 224 * (blue / 255 - luma) / 1.8556,
            128 + 224 * (red / 255 - luma) / 1.5748};
}

std::vector<double> restOfTimes(VideoReader& reader) {
    std::vector<double> times;
    while (const auto frame = reader.next())
        times.push_back(frame->time);
    return times;
}

std::uint64_t fingerprint(const PlanarView& picture) {
    std::uint64_t hash = 0xcbf29ce484222325ULL; // FNV-1a
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y) {
            const auto index = static_cast<std::size_t>(plane);
            const std::uint8_t* row = picture.planes[index] + y * picture.strides[index];
            for (int x = 0; x < picture.planeWidth(plane); ++x)
                hash = (hash ^ row[x]) * 0x100000001b3ULL;
        }
    return hash;
}
