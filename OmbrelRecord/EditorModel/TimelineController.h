#pragma once

#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorModel/TimelineEditing.h"
#include "OmbrelRecord/EditorModel/TimelineLanes.h"
#include "OmbrelRecord/EditorModel/TimelineScale.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QRectF>
#include <optional>
#include <vector>

namespace OmbrelRecord {

/// The hand on the timeline: which part of the recording shows, what the pointer is over, and what a drag
/// does to the project. Views forward what happens to them and draw what it tells. Positions are pixels of
/// the timeline, its top left corner at 0. Main thread.
class TimelineController : public QObject {
    Q_OBJECT
    Q_PROPERTY(OmbrelRecord::EditorModel* editor READ editor WRITE setEditor NOTIFY editorChanged)
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY scaleChanged)
    Q_PROPERTY(double height READ height NOTIFY editorChanged)
    Q_PROPERTY(double start READ start WRITE setStart NOTIFY scaleChanged)
    Q_PROPERTY(double shown READ shown NOTIFY scaleChanged)
    Q_PROPERTY(double magnification READ magnification NOTIFY scaleChanged)
    Q_PROPERTY(double coarsest READ coarsest NOTIFY scaleChanged)
    Q_PROPERTY(double finest READ finest NOTIFY scaleChanged)
    Q_PROPERTY(bool fits READ fits NOTIFY scaleChanged)
    Q_PROPERTY(double playheadX READ playheadX NOTIFY playheadMoved)
    Q_PROPERTY(double snapX READ snapX NOTIFY dragChanged)
    Q_PROPERTY(double hoverX READ hoverX NOTIFY hoverChanged)
    Q_PROPERTY(QString hoverText READ hoverText NOTIFY hoverChanged)
    Q_PROPERTY(Qt::CursorShape cursor READ cursor NOTIFY hoverChanged)
    Q_PROPERTY(bool dragging READ dragging NOTIFY dragChanged)
    Q_PROPERTY(QString dragText READ dragText NOTIFY dragChanged)
    Q_PROPERTY(QRectF selectionRect READ selectionRect NOTIFY selectionMoved)
    Q_PROPERTY(QString selectionKind READ selectionKind NOTIFY selectionMoved)
    Q_PROPERTY(QString selectionText READ selectionText NOTIFY selectionMoved)
    Q_PROPERTY(bool selectionRestorable READ selectionRestorable NOTIFY selectionMoved)
    Q_PROPERTY(bool selectionInFilm READ selectionInFilm NOTIFY selectionMoved)

public:
    enum class Zone { None, Ruler, Film, Sound, Activity, Speed, Zoom };
    Q_ENUM(Zone)

    struct Row {
        double y = 0;
        double height = 0;
        double bottom() const { return y + height; }
        double middle() const { return y + height / 2; }
    };

    /// What a new block plays at.
    static constexpr double newSpeed = 4;
    /// A recording without sound has no row for it.
    static Row row(Zone zone, bool sound);

    explicit TimelineController(QObject* parent = nullptr);

    EditorModel* editor() const { return model; }
    void setEditor(EditorModel* editor);

    const TimelineScale& scale() const { return view; }
    double width() const { return view.width; }
    void setWidth(double width);
    double height() const;
    double start() const { return view.start; }
    void setStart(double start);
    double shown() const { return view.shown(); }
    double magnification() const { return view.coarsest() / view.secondsPerPixel; }
    double coarsest() const { return view.coarsest(); } ///< seconds per pixel
    double finest() const { return view.finest(); }
    bool fits() const { return view.fits(); }
    Row row(Zone zone) const;
    Q_INVOKABLE double rowTop(OmbrelRecord::TimelineController::Zone zone) const { return row(zone).y; }
    Q_INVOKABLE double rowHeight(OmbrelRecord::TimelineController::Zone zone) const {
        return row(zone).height;
    }
    Zone zoneAt(double y) const;

    double playheadX() const;
    double snapX() const;
    double hoverX() const { return hovered; }
    QString hoverText() const;
    Qt::CursorShape cursor() const { return shape; }
    bool dragging() const { return drag.has_value() && drag->moved; }
    QString dragText() const;
    QRectF selectionRect() const;
    QString selectionKind() const;
    QString selectionText() const;
    /// Whether the selected range holds anything that was cut.
    bool selectionRestorable() const;
    /// Whether any of the selected range is in the film.
    bool selectionInFilm() const;

    /// A block that is being drawn on an empty stretch of a lane.
    struct Draft {
        Zone lane = Zone::None;
        RecordCore::TimeRange range;
    };
    std::optional<Draft> draft() const;
    /// The block under the pointer, whose handles show.
    std::optional<RecordCore::Uuid> hoveredBlock() const { return hoveredId; }
    /// Which end of the film the pointer is over: −1 the start, 1 the end, else 0.
    int hoveredTrim() const { return overTrim; }

    // The pointer.
    Q_INVOKABLE void hover(double x, double y);
    Q_INVOKABLE void leave();
    Q_INVOKABLE void press(double x, double y, bool extend = false);
    Q_INVOKABLE void move(double x, double y, bool free = false);
    Q_INVOKABLE void release();
    /// Gives up a drag: everything is as it was. False when there was none.
    Q_INVOKABLE bool cancel();
    Q_INVOKABLE void doubleClick(double x, double y);

    // What shows.
    Q_INVOKABLE void magnify(double factor, double x);
    /// About the playhead where it shows, else about the middle.
    Q_INVOKABLE void magnifyHere(double factor);
    Q_INVOKABLE void scroll(double pixels);
    Q_INVOKABLE void fit();
    Q_INVOKABLE void showSelection();
    Q_INVOKABLE void revealPlayhead();

    // From the keyboard. `lane` is Zone::Speed or Zone::Zoom.
    Q_INVOKABLE bool selectNeighbour(OmbrelRecord::TimelineController::Zone lane, int direction);
    /// Moves what is selected, or with `edge` −1 or 1 only its start or end.
    Q_INVOKABLE void nudge(double seconds, int edge = 0);
    /// Another speed or zoom level of the block selected, one notch up or down.
    Q_INVOKABLE void step(int direction);
    Q_INVOKABLE void addAtPlayhead(OmbrelRecord::TimelineController::Zone lane);
    /// Puts an end of the selected range to the playhead.
    Q_INVOKABLE void selectFromPlayhead();
    Q_INVOKABLE void selectToPlayhead();

    // What the bar beside a selection offers.
    Q_INVOKABLE void cutSelection();
    Q_INVOKABLE void restoreSelection();
    Q_INVOKABLE void speedUpSelection(double speed = newSpeed);
    Q_INVOKABLE void zoomSelection();

    /// The seconds of the film that a stretch of the recording takes at a speed, as people read it:
    /// "40× · 3:10 → 0:05".
    static QString speedLabel(double speed, double seconds);

Q_SIGNALS:
    void editorChanged();
    void scaleChanged();
    void playheadMoved();
    void hoverChanged();
    void dragChanged();
    void selectionMoved();
    /// What is drawn of the project has changed.
    void contentChanged();

private:
    enum class Doing { scrub, range, rangeEdge, trimStart, trimEnd, block, drawing };
    struct Drag {
        Doing doing = Doing::scrub;
        double pressX = 0;
        double pressTime = 0;
        bool moved = false;
        Zone lane = Zone::None;
        RecordCore::Uuid id;
        TimelineEditing::Grip grip = TimelineEditing::Grip::body;
        RecordCore::TimeRange before;
        TimelineEditing::Limits limits;
        RecordCore::TimeRange range; ///< as it is drawn now
        std::optional<double> snapped;
        TimelineEditing::SnapPoints points;
    };

    void setScale(const TimelineScale& scale);
    void playheadChanged();
    void seekSource(double source);
    TimelineLanes lanes() const; ///< there is an editor
    static TimelineLanes::Lane laneOf(Zone zone);
    std::optional<TimelineEditing::Held> blockAt(Zone lane, double x) const;
    /// Seconds of a block that is added where there is none.
    static double newLength(Zone lane);
    /// "3:10", or "4.2 s" where whole seconds say too little.
    static QString lengthText(double seconds);
    void add(Zone lane, const RecordCore::TimeRange& range);
    int trimAt(double x) const;
    std::optional<TimelineEditing::Grip> rangeEdgeAt(double x) const;

    QPointer<EditorModel> model;
    TimelineScale view;
    std::optional<Drag> drag;
    double hovered = -1;
    Zone hoveredZone = Zone::None;
    std::optional<RecordCore::Uuid> hoveredId;
    int overTrim = 0;
    Qt::CursorShape shape = Qt::ArrowCursor;
};

} // namespace OmbrelRecord
