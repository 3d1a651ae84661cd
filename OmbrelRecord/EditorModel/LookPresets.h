#pragma once

#include "OmbrelRecord/EditorModel/LookPreset.h"

#include <QtCore/QAbstractListModel>
#include <QtCore/QString>
#include <filesystem>
#include <optional>
#include <vector>

namespace OmbrelRecord {

class EditorModel;

/// The looks to choose from: those that come with the program, then the user's own in the order in which they
/// were saved. The user's are kept in one file; one that cannot be read is left beside under another name
/// before the first change. Main thread.
class LookPresets : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int builtinCount READ builtinCount CONSTANT)
    Q_PROPERTY(QString deletedName READ deletedName NOTIFY deletedChanged)
    Q_PROPERTY(QString failure READ failure NOTIFY failureChanged)

public:
    enum Role {
        nameRole = Qt::UserRole + 1, ///< "name"
        builtinRole,                 ///< "builtin": cannot be renamed or deleted
        fieldsRole, ///< "fields": its fields by name as in EditorModel::project, for thumbnails
    };

    /// `file` holds the user's looks; it need not exist.
    explicit LookPresets(std::filesystem::path file = standardFile(), QObject* parent = nullptr);

    /// "ombrel-record/looks.json" in the user's configuration folder.
    static std::filesystem::path standardFile();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return rowCount(); }
    static int builtinCount();
    /// Why the user's looks could not be read or kept; empty when all is well.
    QString failure() const { return problem; }

    const LookPreset& at(int row) const;

    /// Gives the editor's project a look, as one step to undo. False when there is no such row.
    Q_INVOKABLE bool apply(int row, OmbrelRecord::EditorModel* editor) const;
    /// The row of the look that the editor's project has now, or −1.
    Q_INVOKABLE int current(OmbrelRecord::EditorModel* editor) const;

    /// Keeps the look of the editor's project under a name and returns its row; −1 when the name is empty or
    /// one of the program's own. A look of the user's with that name is replaced.
    Q_INVOKABLE int save(const QString& name, OmbrelRecord::EditorModel* editor);
    /// False when the name is empty or taken, or the look is not the user's.
    Q_INVOKABLE bool rename(int row, const QString& name);
    /// False when the look is not the user's. The one deleted last can be put back where it was.
    Q_INVOKABLE bool remove(int row);
    Q_INVOKABLE bool putBack();
    /// Its name; empty when there is none.
    QString deletedName() const { return deleted ? QString::fromStdString(deleted->look.name) : QString(); }
    /// A name that is not taken yet, "My look 2".
    Q_INVOKABLE QString freshName() const;

Q_SIGNALS:
    void countChanged();
    void failureChanged();
    void deletedChanged();

private:
    bool isOwn(int row) const { return row >= builtinCount() && row < rowCount(); }
    QString shownName(int row) const;
    int rowNamed(const QString& name) const;
    void keep();

    std::filesystem::path file;
    std::vector<LookPreset> own;
    struct Deleted {
        std::size_t place; ///< among the user's own
        LookPreset look;
    };
    std::optional<Deleted> deleted;
    bool unreadable = false; ///< the file holds what could not be read
    QString problem;
};

} // namespace OmbrelRecord
