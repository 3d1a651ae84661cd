#include "OmbrelRecord/Application/Snapshot.h"
#include "OmbrelRecord/Application/StillLife.h"
#include "OmbrelRecord/EditorModel/OpenedRecording.h"
#include "OmbrelRecord/Entry/Backends.h"
#include "OmbrelRecord/Entry/FilmTake.h"
#include "OmbrelRecord/Entry/Jobs.h"
#include "OmbrelRecord/Entry/Tell.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Rendering/Wallpapers.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QFont>
#include <QtGui/QPainter>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>

namespace OmbrelRecord {

using namespace RecordCore;

namespace fs = std::filesystem;

namespace {

constexpr double fps = FilmTake::fps;
constexpr int quality = 92; ///< of the JPEG files
constexpr QSize screenSize(1920, 1080);

const QColor ground(0x0E, 0x0F, 0x13), surface(0x16, 0x18, 0x1E), line(0x2A, 0x2E, 0x38),
    ink(0xEC, 0xEE, 0xF3), secondary(0x9A, 0xA1, 0xAF), accent(0x6C, 0x7B, 0xFF), removed(0xFF, 0x5C, 0x7A);

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

QFont type(int pixels, QFont::Weight weight = QFont::DemiBold) {
    QFont font(QStringLiteral("Plus Jakarta Sans"));
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

void save(const QImage& image, const fs::path& file) {
    if (!image.save(QString::fromStdString(file.string()), "JPG", quality))
        throw RecordingError(fmt::format("{}: cannot be written", file.string()));
}

template <typename... Arguments>
void say(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::print("film: {}\n", fmt::format(format, std::forward<Arguments>(arguments)...));
    std::fflush(stdout);
}

/// A numbered row of pictures in a folder of its own.
class Sequence {
public:
    Sequence(const fs::path& root, std::string_view name) : folder(root / name), name(name) {
        fs::create_directories(folder);
    }
    void add(const QImage& image) { save(image, folder / fmt::format("{:04}.jpg", ++count)); }
    int frames() const { return count; }
    double seconds() const { return count / fps; }
    /// Says how much of the film the scene shows.
    void done(double of) const { say("{} {:.2f} s of {:.2f}", name, seconds(), of); }

private:
    fs::path folder;
    std::string name;
    int count = 0;
};

/// One recording, and the demonstration made of it.
class Studio {
public:
    Studio(fs::path folder, const fs::path& movie, const std::optional<fs::path>& logFile) :
        media(makeMediaBackend()), root(std::move(folder)), video(movie),
        withCamera(std::getenv("FILM_NOCAM") == nullptr) {
        fs::create_directories(root);
        const RecordingFiles files{video.parent_path()};
        std::optional<InputLog> log;
        std::error_code ignored;
        if (const fs::path from = logFile.value_or(files.input()); logFile || fs::exists(from, ignored))
            log = InputLog::load(from);
        OpenedRecording opened = OpenedRecording::open(*media, video, std::move(log), files.folder);
        recording.files = files;
        recording.info = opened.info;
        recording.samples = std::move(opened.samples);
        recording.log = std::move(opened.log);
        recording.project = Project::load(files.project()).value_or(Project());
    }

    void shoot() {
        if (std::getenv("FILM_STILLS") == nullptr) {
            scene("1-skip", &Studio::skip);
            scene("2-zoom", &Studio::zoom);
            scene("3-wallpapers", &Studio::wallpapers);
            scene("4-formats", &Studio::formats);
            scene("5-camera", &Studio::camera);
            scene("6-cut", &Studio::cut);
            scene("7-export", &Studio::exporting);
        }
        if (std::getenv("FILM_ONLY") == nullptr) stills();
    }

private:
    void scene(std::string_view name, void (Studio::*shootIt)(Sequence&)) {
        const char* only = std::getenv("FILM_ONLY");
        if (only != nullptr && name != only && name.substr(2) != only) return;
        Sequence sequence(root, name);
        (this->*shootIt)(sequence);
    }

    FilmTake take(const Project& project, double scale = 1) const {
        LoadedRecording changed = recording;
        changed.project = project;
        return FilmTake(*media, video, changed, withCamera, scale);
    }
    FilmTake take() const { return take(recording.project); }

    static void play(Sequence& to, FilmTake& film, double from, double until) {
        from = std::max(0.0, from);
        until = std::min(until, film.duration());
        for (int i = 0; from + i / fps < until; ++i)
            to.add(film.frame(from + i / fps));
    }

    /// The output time at which the camera is nearest.
    static double nearest(const FilmTake& film) {
        double best = film.duration() / 2, width = 1;
        for (std::int64_t i = 0; i < film.film().frameCount(); ++i) {
            const double t = static_cast<double>(i) / fps;
            const double shown = film.film().state(t).view.w;
            if (shown < width - 1e-6) {
                width = shown;
                best = t;
            }
        }
        return best;
    }

    /// Where most of the waiting is left out.
    void skip(Sequence& to) {
        FilmTake film = take();
        const SpeedSegment* best = nullptr;
        double saved = 0;
        for (const SpeedSegment& segment : film.plan().segments) {
            if (segment.reason == SpeedSegment::Reason::cut) continue;
            const double gain = (segment.end - segment.start) * (1 - 1 / segment.speed);
            if (gain > saved) {
                saved = gain;
                best = &segment;
            }
        }
        if (best)
            play(to, film, film.plan().outputTime(best->start) - 1.5,
                 film.plan().outputTime(best->end) + 1.5);
        else
            play(to, film, 0, 4);
        to.done(film.duration());
    }

    void zoom(Sequence& to) {
        FilmTake film = take();
        // From just before the camera sets out.
        const double middle = nearest(film);
        double from = middle;
        while (from > std::max(0.0, middle - 4) && film.film().state(from).view.w < 0.999)
            from -= 1 / fps;
        play(to, film, from - 0.5, middle + 2);
        to.done(film.duration());
    }

    /// The film goes on while what is behind it changes: one wallpaper of each family.
    void wallpapers(Sequence& to) {
        constexpr double each = 0.8;
        double at = 0, length = 0;
        std::string_view family;
        for (const Wallpapers::Entry& wallpaper : Wallpapers::all()) {
            if (wallpaper.family == family) continue;
            family = wallpaper.family;
            Project project = before(wallpaper.name);
            project.padding = std::max(project.padding, 0.05);
            FilmTake film = take(project);
            length = film.duration();
            if (at == 0) at = std::min(nearest(film), std::max(0.0, length - 8 * each));
            play(to, film, at, at + each);
            at += each;
        }
        to.done(length);
    }

    /// The recording's project with another wallpaper.
    Project before(std::string_view wallpaper) const {
        Project project = recording.project;
        project.wallpaperPreset = wallpaper;
        project.wallpaper.reset();
        project.solidColor.reset();
        return project;
    }

    void formats(Sequence& to) {
        double length = 0;
        for (const OutputFormat format : allOutputFormats) {
            Project project = recording.project;
            project.format = rawValue(format);
            FilmTake film = take(project);
            length = film.duration();
            const double middle = nearest(film);
            for (int i = 0; i < fps * 1.5; ++i) {
                QImage screen(screenSize, QImage::Format_RGB32);
                screen.fill(ground);
                QPainter painter(&screen);
                painter.setRenderHint(QPainter::SmoothPixmapTransform);
                const QImage picture = film.frame(middle - 0.75 + i / fps)
                                           .scaled(1640, 880, Qt::KeepAspectRatio, Qt::SmoothTransformation);
                painter.drawImage((screen.width() - picture.width()) / 2, 60, picture);
                painter.setFont(type(34));
                painter.setPen(ink);
                painter.drawText(QRect(0, 968, screen.width(), 60), Qt::AlignCenter,
                                 QStringLiteral("%1   %2").arg(text(label(format)), text(rawValue(format))));
                painter.end();
                to.add(screen);
            }
        }
        const QImage list = exportList(take().frame(0));
        for (int i = 0; i < fps * 1.5; ++i)
            to.add(list);
        to.done(length);
    }

    /// What the sheet of exports says once they are done.
    static QImage exportList(const QImage& behind) {
        constexpr OutputFormat listed[]{OutputFormat::wide, OutputFormat::portrait, OutputFormat::tall};
        QImage screen = behind.scaled(screenSize, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
        QPainter painter(&screen);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(screen.rect(), QColor(14, 15, 19, 190));
        const QRect card((screen.width() - 860) / 2, (screen.height() - 480) / 2, 860, 480);
        panel(painter, card);
        painter.setFont(type(40, QFont::Bold));
        painter.setPen(ink);
        painter.drawText(card.adjusted(56, 44, -56, 0), Qt::AlignTop, QStringLiteral("3 videos"));
        int y = card.top() + 136;
        for (const OutputFormat format : listed) {
            painter.setFont(type(28));
            painter.setPen(ink);
            painter.drawText(QRect(card.left() + 56, y, 300, 80), Qt::AlignVCenter, text(label(format)));
            painter.setFont(type(24, QFont::Medium));
            painter.setPen(secondary);
            painter.drawText(QRect(card.left() + 300, y, card.width() - 356, 80),
                             Qt::AlignVCenter | Qt::AlignRight,
                             QStringLiteral("/tmp/%1.mp4").arg(text(rawValue(format))));
            y += 96;
        }
        return screen;
    }

    static void panel(QPainter& painter, const QRect& card) {
        painter.setPen(line);
        painter.setBrush(surface);
        painter.drawRoundedRect(card, 16, 16);
    }

    void camera(Sequence& to) {
        Project project = recording.project;
        double length = 0, at = 0;
        for (const char* corner : {"br", "bl", "tl", "tr"}) {
            for (const char* shape : {"circle", "rounded"}) {
                project.cameraShow = true;
                project.cameraCorner = corner;
                project.cameraShape = shape;
                FilmTake film = take(project);
                if (!film.hasCamera()) return say("5-camera has no camera");
                length = film.duration();
                play(to, film, at, at + 0.6);
                at += 0.6;
            }
        }
        to.done(length);
    }

    /// A fifth of the recording is taken out; below, where that is.
    void cut(Sequence& to) {
        const double whole = recording.info.duration;
        const TimeRange range{whole * 0.4, whole * 0.6};
        Project project = recording.project;
        FilmTake before = take(project);
        project.cuts.push_back(range);
        FilmTake after = take(project);
        const auto show = [&](FilmTake& film, double from, double until, bool gone) {
            for (int i = 0; from + i / fps < until; ++i) {
                const double t = from + i / fps;
                QImage picture = film.frame(t);
                strip(picture, range, film.plan().sourceTime(t), whole, gone);
                to.add(picture);
            }
        };
        const double reached = before.plan().outputTime(range.start);
        show(before, std::max(0.0, reached - 1), std::min(before.duration(), reached + 0.5), false);
        const double join = after.plan().outputTime(range.start);
        show(after, std::max(0.0, join - 1.5), std::min(after.duration(), join + 1.5), true);
        to.done(after.duration());
    }

    static void strip(QImage& picture, const TimeRange& range, double source, double whole, bool gone) {
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF bar(picture.width() * 0.1, picture.height() - 92, picture.width() * 0.8, 44);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(14, 15, 19, 220));
        painter.drawRoundedRect(bar.adjusted(-16, -16, 16, 16), 16, 16);
        painter.setBrush(accent);
        painter.drawRoundedRect(bar, 8, 8);
        const QRectF hole(bar.left() + bar.width() * range.start / whole, bar.top(),
                          bar.width() * (range.end - range.start) / whole, bar.height());
        if (gone) {
            painter.setBrush(surface);
            painter.drawRect(hole);
            painter.setBrush(QBrush(removed, Qt::BDiagPattern));
            painter.drawRect(hole);
        }
        painter.setBrush(ink);
        painter.drawRect(
            QRectF(bar.left() + bar.width() * source / whole - 2, bar.top() - 8, 4, bar.height() + 16));
    }

    void exporting(Sequence& to) {
        FilmTake film = take();
        const int frames = static_cast<int>(3 * fps);
        double ends = 0;
        for (int i = 0; i < frames; ++i) {
            const double share = std::min(1.0, i / (fps * 2.4));
            ends = share * film.duration();
            QImage picture = film.frame(ends);
            QPainter painter(&picture);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.fillRect(picture.rect(), QColor(14, 15, 19, 140));
            const QRect card((picture.width() - 720) / 2, (picture.height() - 220) / 2, 720, 220);
            panel(painter, card);
            painter.setFont(type(32));
            painter.setPen(ink);
            painter.drawText(card.adjusted(48, 44, -48, 0), Qt::AlignTop,
                             share < 1 ? QStringLiteral("Making the film…")
                                       : QStringLiteral("The film is ready"));
            painter.drawText(card.adjusted(48, 44, -48, 0), Qt::AlignTop | Qt::AlignRight,
                             QStringLiteral("%1%").arg(static_cast<int>(share * 100)));
            const QRectF bar(card.left() + 48, card.bottom() - 76, card.width() - 96, 16);
            painter.setPen(Qt::NoPen);
            painter.setBrush(line);
            painter.drawRoundedRect(bar, 8, 8);
            painter.setBrush(accent);
            painter.drawRoundedRect(QRectF(bar.topLeft(), QSizeF(bar.width() * share, bar.height())), 8, 8);
            painter.end();
            to.add(picture);
        }
        say("7-export {} frames, ends at {:.2f}", to.frames(), ends);
    }

    void stills() {
        Project project = recording.project;
        const auto row = [&](const char* prefix) {
            FilmTake film = take(project);
            const double nearestTime = nearest(film);
            save(film.frame(nearestTime), root / fmt::format("{}zoom.jpg", prefix));
            save(film.frame(film.duration() * 0.25), root / fmt::format("{}early.jpg", prefix));
            save(film.frame(film.duration() * 0.75), root / fmt::format("{}late.jpg", prefix));
        };
        row("still-");
        const auto wallpapers = Wallpapers::all();
        const auto bright =
            std::find_if(wallpapers.begin(), wallpapers.end(),
                         [](const Wallpapers::Entry& entry) { return Wallpapers::isLight(entry.name); });
        if (bright != wallpapers.end()) {
            project = before(bright->name);
            row("light-");
        }
        for (int number = 3; number >= 1; --number)
            save(count(number), root / fmt::format("count-{}.jpg", number));
        home();
        say("stills done");
    }

    /// The home screen in both colour schemes.
    void home() const {
        std::vector<Snapshot::View> views = StillLife::views(*media, video);
        std::erase_if(views, [](const Snapshot::View& view) { return view.name != QLatin1String("home"); });
        const QTemporaryDir place;
        for (const std::string& problem : Snapshot::write(views, place.path().toStdString()))
            say("{}", problem);
        for (const char* name : {"home", "light-home"}) {
            const QImage picture(place.filePath(QStringLiteral("%1.png").arg(QLatin1String(name))));
            if (!picture.isNull())
                save(picture.convertToFormat(QImage::Format_RGB32), root / fmt::format("{}.jpg", name));
        }
    }

    /// A number of the countdown over the screen that is about to be recorded.
    QImage count(int number) const {
        QImage picture = take().frame(0).scaled(screenSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRect panel((picture.width() - 240) / 2, (picture.height() - 240) / 2, 240, 240);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(14, 15, 19, 220));
        painter.drawEllipse(panel.adjusted(8, 8, -8, -8));
        painter.setFont(type(120, QFont::Bold));
        painter.setPen(ink);
        painter.drawText(panel, Qt::AlignCenter, QString::number(number));
        return picture;
    }

    std::shared_ptr<const MediaBackend> media;
    fs::path root;
    fs::path video;
    bool withCamera;
    LoadedRecording recording;
};

} // namespace

void Jobs::film(const fs::path& folder, const fs::path& video, const std::optional<fs::path>& log) {
    std::optional<Studio> studio;
    try {
        studio.emplace(folder, video, log);
    } catch (const std::exception& error) {
        say("the recording didn't load");
        tell("{}", error.what());
        return;
    }
    try {
        studio->shoot();
    } catch (const std::exception& error) {
        say("{}", error.what());
    }
}

} // namespace OmbrelRecord
