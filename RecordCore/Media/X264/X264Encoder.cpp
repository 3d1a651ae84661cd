#include "RecordCore/Media/X264/X264Encoder.h"

#include "RecordCore/Media/X264/FilmRate.h"
#include "RecordCore/Media/X264/StillPictures.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <deque>
#include <optional>
#include <span>
#include <utility>
#include <vector>

extern "C" {
#include <x264.h>
}

namespace RecordCore::X264 {

namespace {

// A picture that stands is sent once more this many frames after its last change, with a finer quantiser: the
// change itself was coded in a hurry, the still is looked at.
constexpr int framesUntilRefined = 10;
constexpr int blockSide = 16;
// How far motion may reach down depends on the number of threads, and so does when the size of a frame is
// known: a film is the same on every machine only with a fixed one.
constexpr int filmThreads = 3;

struct CloseEncoder {
    void operator()(x264_t* handle) const { x264_encoder_close(handle); }
};

class Encoder final : public VideoEncoder {
public:
    Encoder(const VideoSettings& settings, PacketSink sink);
    ~Encoder() override { handle.reset(); } // its threads read the block flags until then

    const StreamDescription& description() const override { return stream; }
    std::string name() const override { return "libx264 " + preset; }
    void encode(const PlanarView& picture, std::int64_t pts, const FrameHints& hints) override;
    void repeat(const PlanarView& picture, std::int64_t pts) override;
    void finish(std::int64_t endPts) override;
    bool makesParts() const override { return rate && stills && inOrder; }
    EncodingTally tally() const override { return rate ? rate->tally() : EncodingTally{}; }
    void setElsewhere(const EncodingTally& others) override {
        if (rate) rate->setElsewhere(others);
    }

private:
    /// A frame that is to come out, in order of time.
    struct Slot {
        std::int64_t pts = 0;
        bool repeated = false; ///< written by us, not by the encoder
    };

    void open();
    void describe();
    void takeTime(std::int64_t pts);
    bool keyIsDue(std::int64_t pts) const;
    void send(const PlanarView& picture, std::int64_t pts, bool key, bool still,
              std::span<const std::uint8_t> changedBlocks);
    void receive(x264_nal_t* units, int count, int size, const x264_picture_t& out);
    void writeRepeats();
    void deliver(std::int64_t pts, std::int64_t dts, bool key);

    VideoSettings settings;
    PacketSink sink;
    std::string preset;
    std::unique_ptr<x264_t, CloseEncoder> handle;
    StreamDescription stream;
    std::optional<StillPictures> stills;
    bool inOrder = false; ///< packets leave in order of time

    int columns = 0, rows = 0; ///< macroblocks
    /// Block flags that x264 may still read; one more than it can hold frames back.
    std::vector<std::vector<std::uint8_t>> blockFlags;
    std::size_t nextFlags = 0;
    std::optional<FilmRate> rate; ///< films with free stills; others leave the rate to x264

    bool started = false;
    std::int64_t lastPts = 0;
    std::int64_t lastKeyPts = 0;
    int sinceKey = 0;    ///< frames
    int sinceChange = 0; ///< frames
    bool keyInStill = false;

    std::deque<Slot> slots; ///< accepted, not delivered
    bool finished = false;
    std::int64_t end = 0;

    std::vector<std::uint8_t> outgoing; ///< packet under construction
    struct Held {
        std::vector<std::uint8_t> data;
        std::int64_t pts = 0, dts = 0;
        bool key = false;
    };
    std::optional<Held> held; ///< complete, but its duration is not known yet
    std::vector<std::uint8_t> spare;
};

Encoder::Encoder(const VideoSettings& wanted, PacketSink packetSink) :
    settings(wanted), sink(std::move(packetSink)),
    preset(!wanted.preset.empty() ? wanted.preset : "superfast") {
    open();
}

void Encoder::open() {
    x264_param_t parameters;
    const int code =
        x264_param_default_preset(&parameters, preset.c_str(), settings.realTime ? "zerolatency" : nullptr);
    if (code != 0) throw RecordingError(fmt::format("the H.264 encoder has no preset \"{}\"", preset));
    parameters.i_log_level = X264_LOG_NONE;
    parameters.pf_log = [](void*, int, const char*, va_list) {};
    parameters.i_width = settings.width;
    parameters.i_height = settings.height;
    parameters.i_csp = X264_CSP_I420;
    parameters.i_threads = settings.threads > 0                        ? settings.threads
                           : !settings.realTime && settings.freeStills ? filmThreads
                                                                       : X264_THREADS_AUTO;
    // With true durations the encoder waits for the next frame to know how long one lasts. A still screen has
    // no next frame, and what a crash would take must not depend on it.
    parameters.b_vfr_input = settings.realTime ? 0 : 1;
    parameters.i_timebase_num = static_cast<std::uint32_t>(settings.timeBase.num);
    parameters.i_timebase_den = static_cast<std::uint32_t>(settings.timeBase.den);
    parameters.i_fps_num = static_cast<std::uint32_t>(std::lround(settings.frameRate * 1000));
    parameters.i_fps_den = 1000;
    parameters.rc.i_rc_method = X264_RC_ABR;
    parameters.rc.i_bitrate = static_cast<int>(std::max<std::int64_t>(1, settings.bitrate / 1000));
    parameters.b_annexb = 0;
    parameters.b_repeat_headers = 0;
    parameters.b_open_gop = 0;
    parameters.vui.i_colorprim = 1; // BT.709, all three
    parameters.vui.i_transfer = 1;
    parameters.vui.i_colmatrix = 1;
    parameters.vui.b_fullrange = 0;
    parameters.vui.i_chroma_loc = 0;
    parameters.vui.i_sar_width = 1;
    parameters.vui.i_sar_height = 1;

    const bool wantsStills = settings.realTime || settings.freeStills;
    if (wantsStills) {
        parameters.i_keyint_max = X264_KEYINT_MAX_INFINITE; // asked for frame by frame
        parameters.i_bframe = 0;
        parameters.i_frame_reference = 1;
        parameters.analyse.i_weighted_pred = X264_WEIGHTP_NONE;
        parameters.analyse.b_mixed_references = 0;
        if (!settings.realTime) {
            // Every frame's quantiser is ours: nothing is left that would need a look ahead.
            parameters.analyse.b_mb_info = 1;
            parameters.rc.i_rc_method = X264_RC_CQP;
            // The encoder keeps to the range that these span: quantisers from 6 to 42.
            parameters.rc.i_qp_constant = 24;
            parameters.rc.f_ip_factor = 8;
            parameters.rc.f_pb_factor = 8;
            parameters.rc.i_aq_mode = X264_AQ_NONE;
            parameters.rc.b_mb_tree = 0;
            parameters.rc.i_lookahead = 0;
            parameters.i_scenecut_threshold = 0;
            // Measured on films of screen recordings as quality for the bits: a little more where the camera
            // moves text by fractions of a pixel, less rounding towards nothing, and finer colours, which
            // cost next to nothing here.
            parameters.analyse.i_subpel_refine = std::max(parameters.analyse.i_subpel_refine, 2);
            parameters.analyse.i_luma_deadzone[0] = 13;
            parameters.analyse.i_luma_deadzone[1] = 7;
            parameters.analyse.i_chroma_qp_offset = -2;
            std::optional<FilmRate::Part> part;
            if (settings.part)
                part = {settings.timeBase.seconds(settings.part->begin),
                        settings.timeBase.seconds(settings.part->end), settings.part->share};
            rate.emplace(static_cast<double>(settings.bitrate),
                         settings.timeBase.seconds(settings.expectedEnd), settings.forecast, part);
        }
    } else {
        parameters.i_keyint_max = std::max(1, settings.keyInterval);
    }
    x264_param_apply_profile(&parameters, "high");

    handle.reset(x264_encoder_open(&parameters));
    if (!handle)
        throw RecordingError(
            fmt::format("the H.264 encoder cannot be opened for {} × {}", settings.width, settings.height));
    x264_encoder_parameters(handle.get(), &parameters);
    inOrder = parameters.i_bframe == 0;
    describe();

    columns = (settings.width + blockSide - 1) / blockSide;
    rows = (settings.height + blockSide - 1) / blockSide;
    const auto blocks = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    if (!wantsStills) stills.reset();
    if (stills && !settings.realTime) {
        blockFlags.resize(static_cast<std::size_t>(x264_encoder_maximum_delayed_frames(handle.get())) + 2);
        for (auto& flags : blockFlags)
            flags.resize(blocks);
    }
}

/// Takes the stream's parameter sets as the avcC record (ISO/IEC 14496-15, 5.3.3.1).
void Encoder::describe() {
    x264_nal_t* units = nullptr;
    int count = 0;
    if (x264_encoder_headers(handle.get(), &units, &count) < 0)
        throw RecordingError("the H.264 encoder gives no headers");
    std::span<const std::uint8_t> sequence, picture;
    for (int i = 0; i < count; ++i) {
        // Without start codes each unit begins with its length in four bytes.
        const std::span<const std::uint8_t> unit(units[i].p_payload + 4,
                                                 static_cast<std::size_t>(units[i].i_payload - 4));
        if (units[i].i_type == NAL_SPS) sequence = unit;
        if (units[i].i_type == NAL_PPS) picture = unit;
    }
    if (sequence.size() < 4 || picture.empty()) throw RecordingError("the H.264 encoder gives no headers");
    std::vector<std::uint8_t>& record = stream.extradata;
    const auto put = [&](std::span<const std::uint8_t> unit) {
        record.push_back(static_cast<std::uint8_t>(unit.size() >> 8));
        record.push_back(static_cast<std::uint8_t>(unit.size()));
        record.insert(record.end(), unit.begin(), unit.end());
    };
    record = {1, sequence[1], sequence[2], sequence[3], 0xFF, 0xE1};
    put(sequence);
    record.push_back(1);
    put(picture);
    if (sequence[1] >= 100) {
        const std::array<std::uint8_t, 4> formats{0xFD, 0xF8, 0xF8, 0}; // 4:2:0, 8 bit, no more sets
        record.insert(record.end(), formats.begin(), formats.end());
    }
    stills = StillPictures::forStream(sequence, picture);

    stream.codec = Codec::h264;
    stream.timeBase = settings.timeBase;
    stream.bitrate = settings.bitrate;
    stream.width = settings.width;
    stream.height = settings.height;
    stream.frameRate = settings.frameRate;
}

void Encoder::takeTime(std::int64_t pts) {
    if (started && pts <= lastPts) throw RecordingError("frame times do not rise");
    if (!started) lastKeyPts = pts;
    lastPts = pts;
}

bool Encoder::keyIsDue(std::int64_t pts) const {
    if (!started) return true;
    if (settings.realTime)
        return settings.timeBase.seconds(pts - lastKeyPts) >= settings.keyInterval / settings.frameRate;
    return rate && sinceKey >= settings.keyInterval;
}

void Encoder::encode(const PlanarView& picture, std::int64_t pts, const FrameHints& hints) {
    if (picture.width != settings.width || picture.height != settings.height)
        throw RecordingError(fmt::format("a frame measures {} × {} instead of {} × {}", picture.width,
                                         picture.height, settings.width, settings.height));
    const auto blocks = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    if (!hints.changedBlocks.empty() && hints.changedBlocks.size() != blocks)
        throw RecordingError("the map of changed blocks does not fit the frame");
    const auto isStill = [&] {
        return std::all_of(hints.changedBlocks.begin(), hints.changedBlocks.end(),
                           [](std::uint8_t changed) { return changed == 0; });
    };
    if (started && stills && !hints.keyFrame && !hints.changedBlocks.empty() && isStill()) {
        repeat(picture, pts);
        return;
    }
    takeTime(pts);
    sinceChange = 0;
    keyInStill = false;
    send(picture, pts, hints.keyFrame || keyIsDue(pts), false, hints.changedBlocks);
}

void Encoder::repeat(const PlanarView& picture, std::int64_t pts) {
    if (!started) throw RecordingError("there is no frame to repeat");
    takeTime(pts);
    ++sinceChange;
    if (!stills) {
        send(picture, pts, keyIsDue(pts), true, {});
        return;
    }
    if (!settings.realTime) {
        const bool key = keyIsDue(pts);
        // A key frame in a still is as fine as a refinement.
        const bool refine = sinceChange == framesUntilRefined && !keyInStill;
        if (key || refine) {
            send(picture, pts, key, true, {});
            keyInStill = keyInStill || key;
            return;
        }
    }
    ++sinceKey;
    slots.push_back({pts, true});
    writeRepeats();
}

void Encoder::send(const PlanarView& picture, std::int64_t pts, bool key, bool still,
                   std::span<const std::uint8_t> changedBlocks) {
    x264_picture_t in;
    x264_picture_init(&in);
    in.img.i_csp = X264_CSP_I420;
    in.img.i_plane = 3;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        in.img.plane[plane] = const_cast<std::uint8_t*>(picture.planes[plane]); // it is copied from
        in.img.i_stride[plane] = static_cast<int>(picture.strides[plane]);
    }
    in.i_pts = pts;
    in.i_type = key ? X264_TYPE_IDR : X264_TYPE_AUTO;
    if (!blockFlags.empty()) {
        if (still || !changedBlocks.empty()) {
            std::vector<std::uint8_t>& flags = blockFlags[nextFlags];
            nextFlags = (nextFlags + 1) % blockFlags.size();
            if (still)
                std::fill(flags.begin(), flags.end(), std::uint8_t{X264_MBINFO_CONSTANT});
            else
                std::transform(changedBlocks.begin(), changedBlocks.end(), flags.begin(),
                               [](std::uint8_t changed) {
                                   return changed != 0 ? std::uint8_t{0} : std::uint8_t{X264_MBINFO_CONSTANT};
                               });
            in.prop.mb_info = flags.data();
        }
    }
    if (rate) {
        const auto kind = key     ? FilmRate::Frame::key
                          : still ? FilmRate::Frame::refinement
                                  : FilmRate::Frame::change;
        in.i_qpplus1 = rate->quantiser(kind, settings.timeBase.seconds(pts)) + 1;
    }
    if (key) {
        sinceKey = 0;
        lastKeyPts = pts;
    }
    ++sinceKey;
    started = true;
    slots.push_back({pts, false});

    x264_nal_t* units = nullptr;
    int count = 0;
    x264_picture_t out;
    const int size = x264_encoder_encode(handle.get(), &units, &count, &in, &out);
    if (size < 0) throw RecordingError("the H.264 encoder failed");
    if (size > 0) receive(units, count, size, out);
}

void Encoder::receive(x264_nal_t* units, int count, int size, const x264_picture_t& out) {
    if (rate) rate->coded(std::int64_t{8} * size);
    outgoing.clear();
    if (!stills) {
        outgoing.insert(outgoing.end(), units[0].p_payload, units[0].p_payload + size);
    } else {
        for (int i = 0; i < count; ++i) {
            const std::size_t start = outgoing.size();
            outgoing.resize(start + 4);
            stills->append({units[i].p_payload + 4, static_cast<std::size_t>(units[i].i_payload - 4)},
                           outgoing);
            const auto length = static_cast<std::uint32_t>(outgoing.size() - start - 4);
            for (std::size_t byte = 0; byte < 4; ++byte)
                outgoing[start + byte] = static_cast<std::uint8_t>(length >> (24 - 8 * byte));
        }
    }
    deliver(out.i_pts, out.i_dts, out.b_keyframe != 0);
    writeRepeats();
}

/// Repeats whose turn it is: everything before them has left the encoder.
void Encoder::writeRepeats() {
    while (!slots.empty() && slots.front().repeated) {
        outgoing.assign(4, 0);
        stills->appendRepeat(outgoing);
        const auto length = static_cast<std::uint32_t>(outgoing.size() - 4);
        for (std::size_t byte = 0; byte < 4; ++byte)
            outgoing[byte] = static_cast<std::uint8_t>(length >> (24 - 8 * byte));
        const std::int64_t pts = slots.front().pts;
        deliver(pts, pts, false);
    }
}

/// Hands the packet in `outgoing` on, once it is known how long it lasts.
void Encoder::deliver(std::int64_t pts, std::int64_t dts, bool key) {
    if (settings.realTime || !inOrder) {
        if (!slots.empty()) slots.pop_front();
        // A writer goes by the steps from packet to packet; only the very last one must know its length.
        // Where frames are reordered it counts from the frame shown last.
        const bool last = finished && x264_encoder_delayed_frames(handle.get()) == 0;
        sink({outgoing, pts, dts, last ? end - lastPts : 0, key});
        return;
    }
    if (held) {
        sink({held->data, held->pts, held->dts, pts - held->pts, held->key});
        spare.swap(held->data);
        held.reset();
    }
    slots.pop_front();
    if (!slots.empty() || finished) {
        const std::int64_t next = slots.empty() ? end : slots.front().pts;
        sink({outgoing, pts, dts, next - pts, key});
        return;
    }
    spare.assign(outgoing.begin(), outgoing.end());
    held.emplace();
    held->data.swap(spare);
    held->pts = pts;
    held->dts = dts;
    held->key = key;
}

void Encoder::finish(std::int64_t endPts) {
    if (finished) return;
    finished = true;
    end = endPts;
    while (x264_encoder_delayed_frames(handle.get()) > 0) {
        x264_nal_t* units = nullptr;
        int count = 0;
        x264_picture_t out;
        const int size = x264_encoder_encode(handle.get(), &units, &count, nullptr, &out);
        if (size < 0) throw RecordingError("the H.264 encoder failed");
        if (size > 0) receive(units, count, size, out);
    }
    if (held) {
        sink({held->data, held->pts, held->dts, end - held->pts, held->key});
        held.reset();
    }
    if (rate) rate->finish();
}

} // namespace

std::unique_ptr<VideoEncoder> makeEncoder(const VideoSettings& settings, PacketSink sink) {
    return std::make_unique<Encoder>(settings, std::move(sink));
}

} // namespace RecordCore::X264
