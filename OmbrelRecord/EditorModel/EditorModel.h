#pragma once

#include "OmbrelRecord/EditorModel/CaptionWork.h"
#include "OmbrelRecord/EditorModel/EditHistory.h"
#include "OmbrelRecord/EditorModel/EditorParts.h"
#include "OmbrelRecord/EditorModel/ExportWork.h"
#include "OmbrelRecord/EditorModel/Filmstrip.h"
#include "OmbrelRecord/EditorModel/OpenedRecording.h"
#include "OmbrelRecord/EditorModel/ProjectStore.h"
#include "OmbrelRecord/EditorModel/Waveform.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Planning/Plan.h"

#include <QtCore/QObject>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtCore/QVariant>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace OmbrelRecord {

/// One recording open in the editor: its project, the plan made of it, the playhead and the selection. Every
/// change goes through `update`, which remembers it for undo, plans the film anew and saves. Main thread.
class EditorModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(double duration READ duration CONSTANT)
    Q_PROPERTY(QVariantMap project READ projectFields NOTIFY projectChanged)
    Q_PROPERTY(QVariantMap defaults READ defaultFields CONSTANT)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY projectChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY projectChanged)
    Q_PROPERTY(double outputDuration READ outputDuration NOTIFY planChanged)
    Q_PROPERTY(int skippedCount READ skippedCount NOTIFY planChanged)
    Q_PROPERTY(QVariantList segments READ segmentList NOTIFY planChanged)
    Q_PROPERTY(QVariantList speedBlocks READ speedBlockList NOTIFY planChanged)
    Q_PROPERTY(QVariantList zoomBlocks READ zoomBlockList NOTIFY planChanged)
    Q_PROPERTY(QVariantList pieces READ pieceList NOTIFY planChanged)
    Q_PROPERTY(QVariantList interiorCuts READ interiorCutList NOTIFY planChanged)
    Q_PROPERTY(bool ownSpeedBlocks READ ownSpeedBlocks NOTIFY projectChanged)
    Q_PROPERTY(bool ownZoomBlocks READ ownZoomBlocks NOTIFY projectChanged)
    Q_PROPERTY(bool hasCamera READ hasCamera CONSTANT)
    Q_PROPERTY(bool hasSound READ hasSound CONSTANT)
    Q_PROPERTY(QSizeF sourceSize READ sourceSize CONSTANT)
    Q_PROPERTY(QSizeF viewBase READ viewBase NOTIFY planChanged)
    Q_PROPERTY(QVariantList captions READ captionList NOTIFY projectChanged)
    Q_PROPERTY(bool rendering READ rendering NOTIFY renderingChanged)
    Q_PROPERTY(double playhead READ playhead WRITE seek NOTIFY playheadChanged)
    Q_PROPERTY(double sourceTime READ sourceTime NOTIFY playheadChanged)
    Q_PROPERTY(bool playing READ playing NOTIFY playingChanged)
    Q_PROPERTY(QVariantMap selection READ selectionMap NOTIFY selectionChanged)
    Q_PROPERTY(QVariantMap selectedBlock READ selectedBlockMap NOTIFY selectedBlockChanged)
    Q_PROPERTY(int speedBlockCount READ speedBlockCount NOTIFY planChanged)
    Q_PROPERTY(int zoomBlockCount READ zoomBlockCount NOTIFY planChanged)
    Q_PROPERTY(int captionCount READ captionCount NOTIFY projectChanged)
    Q_PROPERTY(int exportState READ exportStateNumber NOTIFY exportChanged)
    Q_PROPERTY(double exportProgress READ exportProgress NOTIFY exportChanged)
    Q_PROPERTY(bool exportCancelling READ exportCancelling NOTIFY exportChanged)
    Q_PROPERTY(QString exportFailure READ exportFailure NOTIFY exportChanged)
    Q_PROPERTY(QString exportedFile READ exportedFileName NOTIFY exportChanged)
    Q_PROPERTY(bool captioning READ captioning NOTIFY captioningChanged)
    Q_PROPERTY(double captioningProgress READ captioningProgress NOTIFY captioningChanged)
    Q_PROPERTY(QString captionsMessage READ captionsMessage NOTIFY captioningChanged)
    Q_PROPERTY(QString saveFailure READ saveFailure NOTIFY saveFailureChanged)

public:
    using ExportState = ExportWork::State;

    struct Selection {
        struct None {
            bool operator==(const None&) const = default;
        };
        struct Speed {
            RecordCore::Uuid id;
            bool operator==(const Speed&) const = default;
        };
        struct Zoom {
            RecordCore::Uuid id;
            bool operator==(const Zoom&) const = default;
        };
        using Value = std::variant<None, RecordCore::TimeRange, Speed, Zoom>;
    };

    EditorModel(OpenedRecording recording, EditorParts parts, QObject* parent = nullptr);
    /// Saves what is not saved yet; a running export or recognition is given up.
    ~EditorModel() override = default;

    const OpenedRecording& recording() const { return opened; }
    /// Where pictures and sound of the recording come from; may be none.
    const RecordCore::MediaBackend* media() const { return parts.media; }
    const RecordCore::Project& project() const { return current; }
    const RecordCore::Plan& plan() const { return currentPlan; }
    Disposal* disposal() const { return parts.disposal; }
    EditorPreview* preview() const { return shownPreview.get(); }

    // What timelines draw of the recording. Made when it is first asked for and kept as long as the recording
    // is open; null where there is nothing to read it from.
    Filmstrip* filmstrip(int pictureHeight);
    Waveform* waveform();

    QString name() const { return QString::fromStdString(opened.name()); }
    double duration() const { return opened.info.duration; }
    bool hasCamera() const { return cameraThere; }
    bool hasSound() const { return opened.info.hasAudio; }
    QSize sourceSize() const {
        return {static_cast<int>(opened.info.width), static_cast<int>(opened.info.height)};
    }

    // Edits.

    /// Replaces the project; a key names an edit that goes on, such as the dragging of one slider. A project
    /// that equals the present one is no edit.
    void update(RecordCore::Project project, const std::optional<std::string>& coalesce = std::nullopt);
    bool canUndo() const { return history.canUndo(); }
    bool canRedo() const { return history.canRedo(); }
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();

    /// Sets one plain field of the project by its name; edits of one field in a row are one step. False when
    /// there is no such field or the value is not of its type.
    Q_INVOKABLE bool set(const QString& field, const QVariant& value);

    /// Sets several plain fields as one step (a saved look, say); those that do not fit are left alone.
    Q_INVOKABLE void setAll(const QVariantMap& fields);

    /// From here on every edit belongs to one step, however long the hand rests: a drag on the timeline, a
    /// slider that is held. A gesture within a gesture is part of it.
    Q_INVOKABLE void beginGesture();
    Q_INVOKABLE void endGesture();
    /// Ends the gesture as if it had not been.
    Q_INVOKABLE void cancelGesture();
    bool inGesture() const { return gesture.has_value(); }

    /// The blocks in force: the project's own, else the automatic ones where they are on, else none.
    const std::vector<RecordCore::SpeedBlock>& speedBlocks() const;
    const std::vector<RecordCore::ZoomBlock>& zoomBlocks() const;

    void editSpeed(const RecordCore::Uuid& id, const std::function<void(RecordCore::SpeedBlock&)>& change);
    void editZoom(const RecordCore::Uuid& id, const std::function<void(RecordCore::ZoomBlock&)>& change);
    void setSpeed(const RecordCore::TimeRange& range, double speed);
    void addZoom(const RecordCore::TimeRange& range);
    void deleteSpeed(const RecordCore::Uuid& id);
    void deleteZoom(const RecordCore::Uuid& id);
    /// Back to the automatic blocks.
    Q_INVOKABLE void resetSpeedBlocks();
    Q_INVOKABLE void resetZoomBlocks();
    bool ownSpeedBlocks() const { return current.speedBlocks.has_value(); }
    bool ownZoomBlocks() const { return current.zoomBlocks.has_value(); }
    void cut(const RecordCore::TimeRange& range);
    void restoreCuts(const RecordCore::TimeRange& range);
    std::vector<RecordCore::TimeRange> interiorCuts() const;
    int skippedCount() const;
    Q_INVOKABLE void split();
    /// Takes back the split nearest to a time.
    Q_INVOKABLE void removeSplit(double time);
    Q_INVOKABLE void markStart();
    Q_INVOKABLE void markEnd();
    Q_INVOKABLE void deleteSelection();

    // The same for views, where times are plain numbers and ids texts.
    Q_INVOKABLE void editSpeedBlock(const QString& id, double start, double end, double speed);
    Q_INVOKABLE void editZoomBlock(const QString& id, const QVariantMap& changes);
    Q_INVOKABLE void setSpeed(double start, double end, double speed);
    Q_INVOKABLE void addZoom(double start, double end);
    Q_INVOKABLE void cut(double start, double end);
    Q_INVOKABLE void restoreCuts(double start, double end);
    /// An empty text takes the word out.
    Q_INVOKABLE void editCaption(int index, const QString& text);
    /// Forgets the captions.
    Q_INVOKABLE void removeCaptions();

    // Views take these instead of the lists above: a list of a property is read whole for each of its
    // elements.
    int speedBlockCount() const { return static_cast<int>(speedBlocks().size()); }
    int zoomBlockCount() const { return static_cast<int>(zoomBlocks().size()); }
    int captionCount() const { return static_cast<int>(words().size()); }
    /// One word: {text, start, end}.
    Q_INVOKABLE QVariantMap captionWord(int index) const;
    /// The words in short lines, to be read and edited: [{first, count, start}].
    Q_INVOKABLE QVariantList captionRows() const;

    const Selection::Value& selection() const { return selected; }
    void select(const Selection::Value& selection);
    Q_INVOKABLE void selectRange(double start, double end);
    Q_INVOKABLE void selectSpeed(const QString& id);
    Q_INVOKABLE void selectZoom(const QString& id);
    Q_INVOKABLE void selectNothing();

    // Plan and playing.

    /// Plans the film anew after `delay` seconds and refreshes the preview. However often it is called while
    /// that goes on, exactly one more round follows.
    void rebuild(double delay = 0);
    bool rendering() const { return isRendering; }
    /// What the camera sees at zoom 1, as shares of the cropped recording.
    QSizeF viewBase() const { return {currentPlan.baseW, currentPlan.baseH}; }
    double outputDuration() const { return currentPlan.outputDuration(); }

    double playhead() const { return head; } ///< output seconds
    double sourceTime() const { return currentPlan.sourceTime(head); }
    bool playing() const { return isPlaying; }
    Q_INVOKABLE void play();
    Q_INVOKABLE void pause();
    Q_INVOKABLE void seek(double outputSeconds);
    Q_INVOKABLE double outputTime(double source) const { return currentPlan.outputTime(source); }
    Q_INVOKABLE double sourceTimeAt(double output) const { return currentPlan.sourceTime(output); }

    // Export.

    ExportState exportState() const { return exporting.state(); }
    double exportProgress() const { return exporting.progress(); }
    QString exportFailure() const { return exporting.failure(); }
    const std::filesystem::path& exportedFile() const { return exporting.film(); }

    /// "N – YouTube 4K.mp4".
    static std::string exportFileName(const std::string& name, RecordCore::OutputFormat format, double scale);

    /// Makes the film in a format (its stored value; the project's when empty). Ignored while one is being
    /// made.
    Q_INVOKABLE void exportFilm(const QString& format = {}, double scale = 1, bool watermark = false,
                                double fps = 60);
    bool exportCancelling() const { return exporting.cancelling(); }
    /// Whether a finished film is shown in the file viewer at once; off while several are made in a row.
    bool revealsExported = true;
    Q_INVOKABLE void cancelExport() { exporting.cancel(); }
    Q_INVOKABLE void copyExported();
    Q_INVOKABLE void revealExported();

    // Captions.

    bool captioning() const { return listening.working(); }
    double captioningProgress() const { return listening.progress(); }
    QString captionsMessage() const { return listening.problem(); }
    /// Recognises what is said and shows it as captions. The language chosen is remembered.
    Q_INVOKABLE void generateCaptions(const QString& language = {});
    /// Finds the times of the words there are anew: those that were corrected may be longer or shorter than
    /// what was heard at first. One step to undo.
    Q_INVOKABLE void retimeCaptions(const QString& language = {});
    Q_INVOKABLE void cancelCaptions() { listening.cancel(); }
    /// The language chosen last; the user's own before there is one.
    Q_INVOKABLE QString captionsLanguage() const { return CaptionWork::language(); }
    /// Writes the captions, in the film's time, as SubRip or WebVTT by the file's ending. What went wrong is
    /// returned; nothing when it went well.
    Q_INVOKABLE QString saveCaptions(const QUrl& file) const;

    QString saveFailure() const { return saveProblem; }

Q_SIGNALS:
    void projectChanged();
    void planChanged();
    void renderingChanged();
    void playheadChanged();
    void playingChanged();
    void selectionChanged();
    /// Another block is selected, or the one that is has changed.
    void selectedBlockChanged();
    void exportChanged();
    void captioningChanged();
    void saveFailureChanged();

private:
    int exportStateNumber() const { return static_cast<int>(exportState()); }

    template <typename Block>
    struct AutomaticBlocks {
        std::optional<RecordCore::Project> made; ///< what they were made for, without what does not matter
        std::vector<Block> blocks;
    };

    void apply(RecordCore::Project project);
    void makePlan();
    void startRebuild(double delay);
    void rebuilt();
    void moveHead(double outputSeconds);
    void dropStaleSelection();
    double viewportAspect() const;

    const std::vector<RecordCore::CaptionWord>& words() const;

    QVariantMap projectFields() const;
    static QVariantMap defaultFields();
    QVariantList segmentList() const;
    QVariantList speedBlockList() const;
    QVariantList zoomBlockList() const;
    QVariantList pieceList() const;
    QVariantList interiorCutList() const;
    QVariantList captionList() const;
    QVariantMap selectionMap() const;
    /// The block that is selected: {kind ("speed", "zoom", "none"), id, start, end, speed or x, y, zoom}.
    QVariantMap selectedBlockMap() const;
    QString exportedFileName() const { return QString::fromStdString(exporting.film().string()); }

    OpenedRecording opened;
    bool cameraThere = false;
    EditorParts parts;
    RecordCore::Project current;
    RecordCore::Plan currentPlan;
    struct Gesture {
        std::string key;
        double begun = 0; ///< on the clock of the parts
        int depth = 1;
        RecordCore::Project before;
        bool edited = false;
    };
    std::optional<Gesture> gesture;
    int gestures = 0;
    EditHistory history;
    mutable AutomaticBlocks<RecordCore::SpeedBlock> autoSpeedCache;
    mutable AutomaticBlocks<RecordCore::ZoomBlock> autoZoomCache;
    Selection::Value selected;

    bool isRendering = false;
    bool renderAgain = false;
    QTimer rebuildTimer;
    double head = 0;
    bool isPlaying = false;

    QString saveProblem;

    std::unique_ptr<Filmstrip> film;
    std::unique_ptr<Waveform> sound;
    // Ended first, in this order: what they run uses the members above.
    std::unique_ptr<ProjectStore> store;
    std::unique_ptr<EditorPreview> shownPreview;
    CaptionWork listening;
    ExportWork exporting;
};

} // namespace OmbrelRecord
