#include "OmbrelRecord/EditorModel/CaptionWork.h"

#include "OmbrelRecord/AppModel/Wording.h"
#include "OmbrelRecord/Transcriber/Language.h"

#include <QtCore/QSettings>
#include <algorithm>
#include <exception>
#include <utility>

namespace OmbrelRecord {

namespace {

const QString languageKey = QStringLiteral("captions.language");

} // namespace

CaptionWork::~CaptionWork() {
    *cancelled = true;
    Disposal::drop(disposal, std::move(queue));
}

void CaptionWork::start(Listen listen, std::function<void(Words)> done) {
    if (isWorking) return;
    isWorking = true;
    share = 0;
    trouble.clear();
    *cancelled = false;
    Q_EMIT changed();
    queue->post([this, to = mailbox.address(), cancelled = cancelled, listen = std::move(listen),
                 done = std::move(done)]() mutable {
        Words words;
        QString failure;
        try {
            words = listen(
                [this, &to](double heard) {
                    to.post([this, heard] {
                        share = std::clamp(heard, 0.0, 1.0);
                        Q_EMIT changed();
                    });
                },
                *cancelled);
            if (words.empty())
                failure = QStringLiteral("No speech found. Record with Mic on to get captions.");
        } catch (const std::exception& error) {
            failure = QString::fromUtf8(error.what());
        }
        to.post([this, words = std::move(words), failure, done = std::move(done)]() mutable {
            finish(std::move(words), failure, done);
        });
    });
}

void CaptionWork::finish(Words words, const QString& failure, const std::function<void(Words)>& done) {
    isWorking = false;
    if (!*cancelled) trouble = Wording::translated(failure);
    Q_EMIT changed();
    if (!*cancelled && !words.empty()) done(std::move(words));
}

QString CaptionWork::language() {
    const QString chosen = QSettings().value(languageKey).toString();
    return chosen.isEmpty() ? QString::fromStdString(Language::ofUser()) : chosen;
}

void CaptionWork::chooseLanguage(const QString& language) {
    if (!language.isEmpty()) QSettings().setValue(languageKey, language);
}

} // namespace OmbrelRecord
