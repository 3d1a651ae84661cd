#include "RecordCore/Capture/PipeWire/PipeWireCameras.h"

#include "RecordCore/Capture/PipeWire/PipeWireConsumer.h"
#include "RecordCore/Capture/PipeWire/PipeWireFormat.h"
#include "RecordCore/Capture/PipeWire/PipeWireNodes.h"
#include "RecordCore/Model/RecordingError.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>
#include <utility>

namespace RecordCore {

namespace {

constexpr double patience = 4; // seconds until the camera runs; some take one or two to wake up

class PipeWireCamera : public CameraStream {
public:
    PipeWireCamera(std::string camera, std::unique_ptr<PictureDecoder> pictures) :
        id(std::move(camera)), decoder(std::move(pictures)) {}
    ~PipeWireCamera() override { stop(); }

    void start(Handlers receivers) override {
        handlers = std::move(receivers);
        loop.emplace();
        const std::vector<PipeWireCameraNode> nodes = pipeWireCameras(*loop);
        const auto node = std::find_if(nodes.begin(), nodes.end(),
                                       [this](const auto& n) { return id.empty() || n.name == id; });
        if (node == nodes.end()) throw RecordingError("no camera");
        const std::vector<CameraMode> modes = pipeWireCameraModes(*loop, node->id);
        const auto best = chooseCameraMode(modes);
        if (!best) throw RecordingError("camera output");

        PipeWireConsumer::Outcome outcome;
        {
            const PipeWireLoop::Lock lock(*loop);
            loop->onBreak = [this](const std::string&) { end(); };
            consumer.emplace(*loop);
            std::vector<std::uint8_t> memory;
            const std::array<const spa_pod*, 1> formats{modeFormat(modes[*best], memory)};
            PipeWireConsumer::Setup setup;
            setup.name = "Ombrel Record camera";
            setup.role = "Camera";
            setup.target = node->serial.empty() ? node->name : node->serial;
            setup.formats = formats;
            PipeWireConsumer::Handlers consumerHandlers;
            consumerHandlers.onFormat = [this](const spa_pod& param) {
                format = negotiatedFormat(param);
                return format.has_value();
            };
            consumerHandlers.onPicture = [this](const PipeWirePicture& picture) { show(picture); };
            consumerHandlers.onEnd = [this](const std::string&) { end(); };
            outcome = consumer->connect(setup, std::move(consumerHandlers), patience);
        }
        if (outcome == PipeWireConsumer::Outcome::streaming) return;
        stop();
        throw RecordingError(outcome == PipeWireConsumer::Outcome::noFormat ? "camera output"
                                                                            : "camera busy");
    }

    void stop() override {
        if (!loop) return;
        {
            const PipeWireLoop::Lock lock(*loop);
            ended = true;
            loop->onBreak = nullptr;
        }
        consumer.reset();
        loop.reset();
    }

private:
    void show(const PipeWirePicture& picture) {
        if (!format || picture.blocks.empty() || ended) return;
        RawPicture raw =
            RawPicture::contiguous(format->format, format->width, format->height, picture.blocks[0].data,
                                   picture.blocks[0].bytes, picture.blocks[0].stride);
        if (picture.blocks.size() > 1) {
            const std::size_t planes = format->format == RawFormat::i420   ? 3
                                       : format->format == RawFormat::nv12 ? 2
                                                                           : 1;
            if (!separatePlanes(raw, picture.blocks, planes)) return;
        }
        raw.bt709 = format->bt709;
        raw.fullRange = format->fullRange;
        try {
            const PlanarView view = decoder->decode(raw);
            if (!view.empty() && handlers.onFrame) handlers.onFrame({view, picture.time});
        } catch (const std::exception&) {
            end();
        }
    }

    /// Planes that lie in blocks of memory of their own.
    static bool separatePlanes(RawPicture& raw, std::span<const PipeWirePicture::Block> blocks,
                               std::size_t planes) {
        if (blocks.size() < planes) return false;
        for (std::size_t i = 0; i < planes; ++i) {
            const bool half = i > 0 && raw.format == RawFormat::i420;
            const std::ptrdiff_t row = half ? (raw.width + 1) / 2 : (raw.width + 1) / 2 * 2;
            const std::ptrdiff_t rows = i > 0 ? (raw.height + 1) / 2 : raw.height;
            const std::ptrdiff_t stride = blocks[i].stride > 0 ? blocks[i].stride : row;
            if (stride < (i == 0 ? raw.width : row)) return false;
            if (static_cast<std::ptrdiff_t>(blocks[i].bytes) < stride * (rows - 1) + row) return false;
            raw.planes[i] = blocks[i].data;
            raw.strides[i] = stride;
        }
        return true;
    }

    void end() {
        if (std::exchange(ended, true)) return;
        if (handlers.onEnd) handlers.onEnd("the camera is gone");
    }

    const std::string id;
    std::optional<PipeWireLoop> loop;
    std::optional<PipeWireConsumer> consumer;
    // Below: the loop's thread, once it runs.
    std::unique_ptr<PictureDecoder> decoder;
    Handlers handlers;
    std::optional<PipeWireVideoFormat> format;
    bool ended = false;
};

} // namespace

std::vector<CameraDevice> PipeWireCameras::cameras() const {
    PipeWireLoop loop;
    std::vector<CameraDevice> found;
    for (const PipeWireCameraNode& node : pipeWireCameras(loop))
        found.push_back({node.name, node.description});
    return found;
}

std::unique_ptr<CameraStream> PipeWireCameras::openCamera(const std::string& id) const {
    return std::make_unique<PipeWireCamera>(id, makeDecoder());
}

} // namespace RecordCore
