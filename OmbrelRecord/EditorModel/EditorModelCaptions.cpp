#include "OmbrelRecord/EditorModel/EditorModel.h"

#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/AppModel/Wording.h"
#include "OmbrelRecord/Transcriber/CaptionFile.h"

#include <fmt/format.h>
#include <string_view>

namespace OmbrelRecord {

using namespace RecordCore;

void EditorModel::editCaption(int index, const QString& words) {
    if (!current.captions || index < 0 || static_cast<std::size_t>(index) >= current.captions->size()) return;
    Project project = current;
    const QString text = words.simplified();
    if (text.isEmpty()) {
        project.captions->erase(project.captions->begin() + index);
        update(std::move(project));
        return;
    }
    (*project.captions)[static_cast<std::size_t>(index)].text = text.toStdString();
    update(std::move(project), fmt::format("caption {}", index));
}

void EditorModel::removeCaptions() {
    Project project = current;
    project.captions.reset();
    project.showCaptions = false;
    update(std::move(project));
}

void EditorModel::generateCaptions(const QString& language) {
    if (!parts.recognizeWords) return;
    CaptionWork::chooseLanguage(language);
    listening.start(
        [listen = parts.recognizeWords, video = opened.video, chosen = captionsLanguage().toStdString()](
            const auto& progress, const auto& cancel) { return listen(video, chosen, progress, cancel); },
        [this](std::vector<CaptionWord> words) {
            Project project = current;
            project.captions = std::move(words);
            project.showCaptions = true;
            update(std::move(project));
        });
}

void EditorModel::retimeCaptions(const QString& language) {
    if (!parts.alignWords || words().empty()) return;
    CaptionWork::chooseLanguage(language);
    listening.start(
        [listen = parts.alignWords, video = opened.video, given = words(),
         chosen = captionsLanguage().toStdString()](const auto& progress, const auto& cancel) {
            return listen(video, given, chosen, progress, cancel);
        },
        [this, given = words()](std::vector<CaptionWord> timed) {
            // Words corrected meanwhile keep what was typed; when some have come or gone, the times of these
            // are not those of the others.
            if (timed.size() != words().size() || given.size() != words().size()) return;
            Project project = current;
            for (std::size_t i = 0; i < timed.size(); ++i) {
                (*project.captions)[i].start = timed[i].start;
                (*project.captions)[i].end = timed[i].end;
            }
            update(std::move(project));
        });
}

QString EditorModel::saveCaptions(const QUrl& file) const {
    const QString path = file.toLocalFile();
    const auto format = path.endsWith(QLatin1String(".vtt"), Qt::CaseInsensitive) ? CaptionFile::Format::vtt
                                                                                  : CaptionFile::Format::srt;
    try {
        CaptionFile::write(CaptionFile::text(CaptionFile::lines(current, &currentPlan), format),
                           path.toStdString());
        return {};
    } catch (const std::exception& error) {
        Diag::log(std::string("editor: captions not saved ") + error.what());
        return tr("The captions couldn't be saved there: %1. Choose another folder.")
            .arg(Wording::translated(std::string_view(error.what())));
    }
}

const std::vector<CaptionWord>& EditorModel::words() const {
    static const std::vector<CaptionWord> none;
    return current.captions ? *current.captions : none;
}

} // namespace OmbrelRecord
