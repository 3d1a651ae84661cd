#pragma once

#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorModel/LookPresets.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QSize>
#include <QtCore/QSizeF>
#include <QtCore/QTimer>
#include <QtGui/QImage>
#include <atomic>
#include <memory>
#include <vector>

namespace OmbrelRecord {

/// What the film under the playhead would be in each of the looks: small pictures of the user's own film,
/// composed as the export composes it. Made on a thread of its own, one look after the other, and anew when
/// the project, the looks or the resting playhead change; looks whose picture would stay the same are left
/// alone. Main thread.
class LookPictures : public QObject {
    Q_OBJECT
    Q_PROPERTY(OmbrelRecord::EditorModel* editor READ editor WRITE setEditor NOTIFY editorChanged)
    Q_PROPERTY(OmbrelRecord::LookPresets* looks READ looks WRITE setLooks NOTIFY looksChanged)
    /// Room for one picture, in device pixels.
    Q_PROPERTY(QSizeF room READ room WRITE setRoom NOTIFY roomChanged)
    /// Whether every picture is there.
    Q_PROPERTY(bool settled READ settled NOTIFY settledChanged)

public:
    explicit LookPictures(QObject* parent = nullptr);
    ~LookPictures() override;

    EditorModel* editor() const { return model; }
    void setEditor(EditorModel* editor);
    LookPresets* looks() const { return presets; }
    void setLooks(LookPresets* looks);
    QSizeF room() const { return most; }
    void setRoom(const QSizeF& pixels);
    bool settled() const { return open == 0 && !soon.isActive(); }

    /// The picture of a row of the looks: the latest there is, null before the first and where the recording
    /// cannot be read.
    QImage picture(int row) const;

Q_SIGNALS:
    void editorChanged();
    void looksChanged();
    void roomChanged();
    void settledChanged();
    void pictureChanged(int row);

private:
    /// All that a picture depends on.
    struct Key {
        RecordCore::Project project; ///< in the look
        double time = 0;             ///< source seconds
        QSize room;
        bool operator==(const Key&) const = default;
    };
    struct Entry {
        Key key;
        QImage image;
    };
    class Painter;

    void askSoon();
    void ask();
    void show(int row, const Key& key, const QImage& image);

    QPointer<EditorModel> model;
    QPointer<LookPresets> presets;
    QSize most;
    std::vector<Entry> entries; ///< by row
    int open = 0;               ///< pictures asked for and not here yet
    QTimer soon;
    std::shared_ptr<Painter> painter;
    std::shared_ptr<std::atomic<int>> round; ///< what was asked for in an earlier one is not made any more
    Mailbox mailbox;
    /// The picture in work may come to its end in the disposal of the editor's parts.
    std::shared_ptr<SerialQueue> queue;
    Disposal* disposal = nullptr;
};

} // namespace OmbrelRecord
