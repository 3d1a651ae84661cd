// Reads a camera through the kernel's video interface and prints the number and time of each picture, and
// at the end the colour of the last. It is a program of its own so that a test can put another library under
// that interface.
//
//   CameraReader SECONDS

#include "RecordCore/Capture/V4L2/V4L2Cameras.h"
#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "Tests/System/NumberedPicture.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <thread>

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    try {
        const RecordCore::V4L2Cameras cameras(RecordCore::FFmpeg::makePictureDecoder);
        for (const RecordCore::CameraDevice& device : cameras.cameras())
            std::printf("device %s %s\n", device.id.c_str(), device.name.c_str());
        const auto stream = cameras.openCamera("");
        std::array<int, 3> colour{};
        stream->start({[&](const RecordCore::CameraFrame& frame) {
                           std::printf("frame %u %.9f %d %d\n", readNumber(frame.picture), frame.time,
                                       frame.picture.width, frame.picture.height);
                           colour = readColour(frame.picture);
                       },
                       [](const std::string& message) { std::printf("end %s\n", message.c_str()); }});
        std::this_thread::sleep_for(std::chrono::duration<double>(std::atof(argv[1])));
        stream->stop();
        std::printf("colour %d %d %d\n", colour[0], colour[1], colour[2]);
        return 0;
    } catch (const std::exception& error) {
        std::printf("error %s\n", error.what());
        return 1;
    }
}
