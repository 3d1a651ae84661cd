#pragma once

#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"
#include "RecordCore/Capture/CameraStream.h"
#include "RecordCore/Capture/ScreenBackend.h"
#include "RecordCore/Capture/SoundStream.h"
#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Media/PictureDecoder.h"
#include "RecordCore/Media/SoundOutput.h"
#include "RecordCore/Rendering/Glyphs.h"
#include "RecordCore/Rendering/Kernels/Kernels.h"
#include "RecordCore/Rendering/PngFile.h"
#include "RecordCore/Rendering/WallpaperFile.h"

#include <functional>
#include <memory>
#include <string_view>

// What each module offers: a module defines one `ombrelModule` of its kind. Any thread.

namespace OmbrelRecord::Modules {

/// The first word of every module. Program and module share C++ types, so they must be of the same build.
struct Head {
    const char* name;
    const char* version;
};

struct Media {
    static constexpr const char* file = "ombrel-media.so";
    Head head;
    std::unique_ptr<const RecordCore::MediaBackend> (*media)();
    std::unique_ptr<RecordCore::PictureDecoder> (*pictureDecoder)();
};

struct Screen {
    static constexpr const char* file = "ombrel-screen.so";
    Head head;
    std::unique_ptr<RecordCore::ScreenBackend> (*screen)();
    /// A letter with Super and Alt, until the result goes: RecordCore::X11HotKey.
    std::shared_ptr<void> (*hotKey)(char letter, std::function<void()> pressed);
};

struct Sound {
    static constexpr const char* file = "ombrel-sound.so";
    Head head;
    std::unique_ptr<RecordCore::SoundBackend> (*sound)();
    std::unique_ptr<RecordCore::SoundOutput> (*output)();
};

struct Camera {
    static constexpr const char* file = "ombrel-camera.so";
    Head head;
    std::unique_ptr<RecordCore::CameraBackend> (*cameras)(RecordCore::PictureDecoderFactory decoder);
};

struct Speech {
    static constexpr const char* file = "ombrel-speech.so";
    Head head;
    /// The media backend must outlive the engine.
    std::unique_ptr<SpeechEngine> (*speech)(const RecordCore::MediaBackend& media);
};

struct Signature {
    static constexpr const char* file = "ombrel-signature.so";
    Head head;
    bool (*isSigned)(std::string_view bytes, std::string_view signature, std::string_view publicKey);
};

/// The engine's functions of the same names, which stand-ins in the program call.
struct Kernels {
    static constexpr const char* file = "ombrel-kernels.so";
    Head head;
    decltype(&RecordCore::Kernels::weighRows) weighRows;
    decltype(&RecordCore::Kernels::weighColumns) weighColumns;
    decltype(&RecordCore::Kernels::rowToBgra) rowToBgra;
    decltype(&RecordCore::Kernels::mixUnder) mixUnder;
    decltype(&RecordCore::Kernels::layOver) layOver;
    decltype(&RecordCore::Kernels::layConstant) layConstant;
    decltype(&RecordCore::Kernels::markDifferences) markDifferences;
};

/// Likewise.
struct Drawing {
    static constexpr const char* file = "ombrel-drawing.so";
    Head head;
    decltype(&RecordCore::Glyphs::paintPointer) paintPointer;
    decltype(&RecordCore::Glyphs::paintClick) paintClick;
    decltype(&RecordCore::Glyphs::captionLine) captionLine;
    decltype(&RecordCore::Glyphs::pill) pill;
    decltype(&RecordCore::Glyphs::clockBadge) clockBadge;
    decltype(&RecordCore::Glyphs::textBlock) textBlock;
    decltype(&RecordCore::Glyphs::endCard) endCard;
    decltype(&RecordCore::Glyphs::watermarkBadge) watermarkBadge;
    decltype(&RecordCore::WallpaperFile::load) loadWallpaper;
    decltype(&RecordCore::writePng) writePng;
};

} // namespace OmbrelRecord::Modules

/// Marks what a module shows to the program.
#define OMBREL_MODULE extern "C" __attribute__((visibility("default")))
