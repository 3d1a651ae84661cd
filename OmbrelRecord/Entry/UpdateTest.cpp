#include "OmbrelRecord/Entry/Backends.h"
#include "OmbrelRecord/Entry/Jobs.h"
#include "OmbrelRecord/Entry/Tell.h"
#include "OmbrelRecord/Updates/Updates.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTemporaryDir>
#include <cstdio>
#include <ctime>
#include <exception>
#include <fmt/chrono.h>
#include <fmt/format.h>

namespace OmbrelRecord {

using RecordCore::readFile;
using RecordCore::writeFileAtomically;

namespace fs = std::filesystem;

namespace {

struct Outcome {
    Updates::State state;
    std::string version;
    std::string failure;
};

Outcome ask(const fs::path& feed, const std::string& key) {
    Updates updates({QUrl::fromLocalFile(QString::fromStdString(feed.string())), key, OMBREL_VERSION},
                    verifySignature);
    QEventLoop loop;
    QObject::connect(&updates, &Updates::changed, &loop, [&] {
        if (updates.state() != Updates::State::checking) loop.quit();
    });
    updates.check();
    if (updates.state() == Updates::State::checking) loop.exec();
    return {updates.state(), updates.version().toStdString(), updates.failure().toStdString()};
}

/// Throws what makes the test fail.
std::string trial(const fs::path& folder) {
    const std::string key = fromBase64(readFile(folder / "key"));
    const Outcome outcome = ask(folder / "feed.json", key);
    std::string report;
    switch (outcome.state) {
    case Updates::State::available:
        report = fmt::format("update: {} is available\n", outcome.version);
        break;
    case Updates::State::current:
        report = fmt::format("update: {} is not later\n", outcome.version);
        break;
    case Updates::State::off:
        throw RecordCore::RecordingError("\"key\" holds no key");
    default:
        throw RecordCore::RecordingError(outcome.failure);
    }
    // The same feed, changed by somebody who has not got the key.
    const QTemporaryDir place;
    const fs::path changed = place.path().toStdString();
    std::string text = readFile(folder / "feed.json");
    text += '\n';
    writeFileAtomically(changed / "feed.json", text);
    writeFileAtomically(changed / "feed.json.sig", readFile(folder / "feed.json.sig"));
    if (ask(changed / "feed.json", key).state != Updates::State::failed)
        throw RecordCore::RecordingError("a changed feed was believed");
    return report + "a changed feed: refused\n";
}

} // namespace

void Jobs::updateTest(const fs::path& folder) {
    std::string report = fmt::format("Ombrel Record update test {:%Y-%m-%d %H:%M:%S} +0000\nprogram: {}\n",
                                     fmt::gmtime(std::time(nullptr)), OMBREL_VERSION);
    try {
        report += trial(folder) + "PASS";
    } catch (const std::exception& error) {
        report += fmt::format("FAIL: {}", error.what());
    }
    try {
        writeFileAtomically(folder / "report.txt", report);
    } catch (const std::exception& error) {
        tell("{}", error.what());
    }
}

} // namespace OmbrelRecord
