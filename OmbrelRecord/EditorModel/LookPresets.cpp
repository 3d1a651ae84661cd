#include "OmbrelRecord/EditorModel/LookPresets.h"

#include "OmbrelRecord/AppModel/Wording.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorModel/ProjectFields.h"
#include "RecordCore/Model/AtomicFile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStandardPaths>
#include <algorithm>
#include <array>

namespace OmbrelRecord {

namespace {

// The names of the looks that come with the program, for translators.
[[maybe_unused]] constexpr std::array builtinNames{
    QT_TRANSLATE_NOOP("LookPresets", "Orbit"),    QT_TRANSLATE_NOOP("LookPresets", "Stage"),
    QT_TRANSLATE_NOOP("LookPresets", "Studio"),   QT_TRANSLATE_NOOP("LookPresets", "Midnight"),
    QT_TRANSLATE_NOOP("LookPresets", "Northern"), QT_TRANSLATE_NOOP("LookPresets", "Paper"),
    QT_TRANSLATE_NOOP("LookPresets", "Horizon"),  QT_TRANSLATE_NOOP("LookPresets", "Frosted"),
    QT_TRANSLATE_NOOP("LookPresets", "Petal"),    QT_TRANSLATE_NOOP("LookPresets", "Keynote"),
    QT_TRANSLATE_NOOP("LookPresets", "Ink"),      QT_TRANSLATE_NOOP("LookPresets", "Edge to edge")};

LookPreset nowOf(const EditorModel& editor) {
    return LookPreset::of(editor.project(), {}, editor.recording().files.folder);
}

} // namespace

LookPresets::LookPresets(std::filesystem::path file, QObject* parent) :
    QAbstractListModel(parent), file(std::move(file)) {
    LookPresetFile::Contents contents = LookPresetFile::load(this->file);
    own = std::move(contents.looks);
    unreadable = !contents.problem.empty();
    problem = Wording::translated(contents.problem);
}

std::filesystem::path LookPresets::standardFile() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(folder.toStdString()) / "ombrel-record" / "looks.json";
}

int LookPresets::builtinCount() {
    return static_cast<int>(LookPreset::builtIn().size());
}

int LookPresets::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : builtinCount() + static_cast<int>(own.size());
}

const LookPreset& LookPresets::at(int row) const {
    return row < builtinCount() ? LookPreset::builtIn()[static_cast<std::size_t>(row)]
                                : own[static_cast<std::size_t>(row - builtinCount())];
}

QString LookPresets::shownName(int row) const {
    const std::string& name = at(row).name;
    return row < builtinCount() ? QCoreApplication::translate("LookPresets", name.c_str())
                                : QString::fromStdString(name);
}

QVariant LookPresets::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() < 0 || index.row() >= rowCount()) return {};
    switch (role) {
    case Qt::DisplayRole:
    case nameRole:
        return shownName(index.row());
    case builtinRole:
        return index.row() < builtinCount();
    case fieldsRole: {
        RecordCore::Project project;
        at(index.row()).applyTo(project);
        return ProjectFields::read(project);
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> LookPresets::roleNames() const {
    return {{nameRole, "name"}, {builtinRole, "builtin"}, {fieldsRole, "fields"}};
}

bool LookPresets::apply(int row, EditorModel* editor) const {
    if (!editor || row < 0 || row >= rowCount()) return false;
    RecordCore::Project project = editor->project();
    at(row).applyTo(project);
    editor->update(std::move(project));
    return true;
}

int LookPresets::current(EditorModel* editor) const {
    if (!editor) return -1;
    const LookPreset now = nowOf(*editor);
    for (int row = 0; row < rowCount(); ++row) {
        LookPreset look = at(row);
        look.name.clear();
        if (look == now) return row;
    }
    return -1;
}

int LookPresets::rowNamed(const QString& name) const {
    for (int row = 0; row < rowCount(); ++row)
        if (shownName(row).compare(name, Qt::CaseInsensitive) == 0) return row;
    return -1;
}

int LookPresets::save(const QString& name, EditorModel* editor) {
    const QString plain = name.simplified();
    if (!editor || plain.isEmpty()) return -1;
    int row = rowNamed(plain);
    if (row >= 0 && !isOwn(row)) return -1;
    LookPreset look = nowOf(*editor);
    look.name = plain.toStdString();
    if (row >= 0) {
        own[static_cast<std::size_t>(row - builtinCount())] = std::move(look);
        Q_EMIT dataChanged(index(row), index(row));
    } else {
        row = rowCount();
        beginInsertRows({}, row, row);
        own.push_back(std::move(look));
        endInsertRows();
        Q_EMIT countChanged();
    }
    keep();
    return row;
}

bool LookPresets::rename(int row, const QString& name) {
    const QString plain = name.simplified();
    if (!isOwn(row) || plain.isEmpty()) return false;
    const int other = rowNamed(plain);
    if (other >= 0 && other != row) return false;
    own[static_cast<std::size_t>(row - builtinCount())].name = plain.toStdString();
    Q_EMIT dataChanged(index(row), index(row), {Qt::DisplayRole, nameRole});
    keep();
    return true;
}

bool LookPresets::remove(int row) {
    if (!isOwn(row)) return false;
    const auto place = own.begin() + (row - builtinCount());
    deleted = Deleted{static_cast<std::size_t>(row - builtinCount()), *place};
    beginRemoveRows({}, row, row);
    own.erase(place);
    endRemoveRows();
    Q_EMIT countChanged();
    Q_EMIT deletedChanged();
    keep();
    return true;
}

bool LookPresets::putBack() {
    if (!deleted) return false;
    Deleted again = std::move(*deleted);
    deleted.reset();
    Q_EMIT deletedChanged();
    // Another look may have its name by now.
    if (rowNamed(QString::fromStdString(again.look.name)) >= 0) again.look.name = freshName().toStdString();
    const std::size_t place = std::min(again.place, own.size());
    const int row = builtinCount() + static_cast<int>(place);
    beginInsertRows({}, row, row);
    own.insert(own.begin() + static_cast<std::ptrdiff_t>(place), std::move(again.look));
    endInsertRows();
    Q_EMIT countChanged();
    keep();
    return true;
}

QString LookPresets::freshName() const {
    const QString plain = tr("My look");
    QString name = plain;
    for (int number = 2; rowNamed(name) >= 0; ++number)
        name = QStringLiteral("%1 %2").arg(plain).arg(number);
    return name;
}

void LookPresets::keep() {
    QString now;
    try {
        if (unreadable) RecordCore::keepBeside(file);
        LookPresetFile::save(file, own);
        unreadable = false;
    } catch (const std::exception& error) {
        now = Wording::translated(std::string_view(error.what()));
    }
    if (now == problem) return;
    problem = now;
    Q_EMIT failureChanged();
}

} // namespace OmbrelRecord
