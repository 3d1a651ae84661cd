#pragma once

#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "RecordCore/Model/Project.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>
#include <filesystem>
#include <optional>

namespace OmbrelRecord {

/// Keeps a project in its file. A change is written 0.4 s after the last one, and during a long row of
/// changes at least every 0.5 s, so that a crash costs no more than that. Writing happens on a thread of the
/// object's own and replaces the file atomically: at any moment it holds one whole project, the old or the
/// new one. Main thread.
class ProjectStore : public QObject {
    Q_OBJECT

public:
    explicit ProjectStore(std::filesystem::path file, QObject* parent = nullptr);
    /// Writes what is not written yet.
    ~ProjectStore() override;

    /// Reads the project; none when there is no file or it is no project. In the latter case the file is kept
    /// under another name beside it before the first save, and `problem` receives the cause.
    std::optional<RecordCore::Project> load(std::string* problem = nullptr);

    /// Writes the project soon.
    void schedule(const RecordCore::Project& project);

    /// Returns when everything scheduled has been written (or could not be).
    void flush();

Q_SIGNALS:
    /// The project could not be written; the next change tries again.
    void failed(const QString& description);

private:
    void save();

    std::filesystem::path file;
    bool unreadable = false; ///< the file there is not ours to replace
    std::optional<RecordCore::Project> unsaved;
    QElapsedTimer unsavedFor;
    QTimer timer;
    SerialQueue queue;
};

} // namespace OmbrelRecord
