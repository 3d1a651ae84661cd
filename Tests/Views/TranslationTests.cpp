#include "OmbrelRecord/AppModel/Wording.h"
#include "OmbrelRecord/Application/OmbrelRecordApp.h"
#include "OmbrelRecord/Application/StillLife.h"
#include "OmbrelRecord/Entry/Backends.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtCore/QXmlStreamReader>
#include <QtQuick/QQuickItem>
#include <gmock/gmock.h>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OmbrelRecord {
namespace {

const QString folder = QStringLiteral(OMBREL_SOURCE_DIR "/OmbrelRecord/Resources/translations");

QStringList places(const QString& text) {
    static const QRegularExpression place(QStringLiteral("%[0-9]"));
    QStringList found;
    for (auto each = place.globalMatch(text); each.hasNext();)
        found.append(each.next().captured());
    found.sort();
    found.removeDuplicates();
    return found;
}

TEST(Translations, SayEverythingAndKeepItsValues) {
    const QStringList files = QDir(folder).entryList({QStringLiteral("*.ts")});
    ASSERT_FALSE(files.isEmpty());
    for (const QString& name : files) {
        QFile file(folder + QLatin1Char('/') + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QXmlStreamReader xml(&file);
        QString source;
        int texts = 0;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement) continue;
            if (xml.name() == QLatin1String("source")) source = xml.readElementText();
            if (xml.name() != QLatin1String("translation")) continue;
            const QString where = name + QStringLiteral(": ") + source;
            EXPECT_TRUE(xml.attributes().value(QLatin1String("type")).isEmpty())
                << where.toStdString() << " is not translated";
            const QString text = xml.readElementText();
            EXPECT_FALSE(text.trimmed().isEmpty()) << where.toStdString();
            EXPECT_EQ(places(text), places(source)) << where.toStdString();
            // Keys are parted by two spaces.
            EXPECT_EQ(text.count(QLatin1String("  ")), source.count(QLatin1String("  ")))
                << where.toStdString();
            ++texts;
        }
        EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
        EXPECT_GT(texts, 400) << name.toStdString();
    }
}

TEST(Translations, FollowTheLanguageOfTheDesktop) {
    if (!QFile::exists(QStringLiteral(":/translations/ombrel-record_de.qm")))
        GTEST_SKIP() << "built without translations";
    const auto said = [](const char* context, const char* text) {
        return QCoreApplication::translate(context, text);
    };
    OmbrelRecordApp::translate(QLocale(QLocale::German, QLocale::Austria));
    EXPECT_EQ(said("ExportSheet", "Your film is ready"), QStringLiteral("Ihr Film ist fertig"));
    EXPECT_EQ(said("OmbrelRecord::LookPresets", "My look"), QStringLiteral("Mein Stil"));
    EXPECT_EQ(said("LookPresets", "Paper"), QStringLiteral("Papier"));
    EXPECT_EQ(said("FileDialog", "File name"), QStringLiteral("Dateiname")) << "the toolkit's own dialog";
    OmbrelRecordApp::translate(QLocale::c());
    EXPECT_EQ(said("ExportSheet", "Your film is ready"), QStringLiteral("Your film is ready"));
}

TEST(Translations, WhatTheEngineSaysIsTranslatedPartByPart) {
    if (!QFile::exists(QStringLiteral(":/translations/ombrel-record_de.qm")))
        GTEST_SKIP() << "built without translations";
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"/films/a: b.mp4: cannot be written: No space left on device",
         "/films/a: b.mp4: lässt sich nicht schreiben: kein Platz mehr auf der Festplatte"},
        {"a.mp4: the file is cut off: it holds 5 bytes of at least 9: End of file",
         "a.mp4: die Datei ist abgeschnitten: Sie enthält 5 Byte von mindestens 9: Ende der Datei"},
        {"there is no window 12", "das Fenster 12 gibt es nicht"},
        {"Super+Alt+R doesn't work here (the X server does not answer any more). Use the Record button.",
         "Super+Alt+R geht hier nicht (der X-Server antwortet nicht mehr). Nehmen Sie den Knopf "
         "„Aufnehmen“."},
        {"Aufnahme beendet: camera busy", "Aufnahme beendet: die Kamera ist belegt"},
        {"something new: %1 of it", "something new: %1 of it"},
    };
    for (const auto& [english, german] : cases) {
        OmbrelRecordApp::translate(QLocale::c());
        EXPECT_EQ(Wording::translated(std::string_view(english)), QString::fromUtf8(english));
        OmbrelRecordApp::translate(QLocale(QLocale::German));
        EXPECT_EQ(Wording::translated(std::string_view(english)).toStdString(), german);
    }
    OmbrelRecordApp::translate(QLocale::c());
}

void findCutOff(QQuickItem& item, const std::string& where, std::set<std::string>& found) {
    if (!item.isVisible()) return;
    if (item.inherits("QQuickText") && item.property("truncated").toBool())
        found.insert(where + ": " + item.property("text").toString().toStdString());
    for (QQuickItem* child : item.childItems())
        findCutOff(*child, where, found);
}

TEST(Translations, FitWhereTheyStand) {
    if (!QFile::exists(QStringLiteral(":/translations/ombrel-record_de.qm")))
        GTEST_SKIP() << "built without translations";
    const QTemporaryDir folder;
    const auto media = makeMediaBackend();
    OmbrelRecordApp::translate(QLocale(QLocale::German));
    std::vector<Snapshot::View> views =
        StillLife::views(*media, OMBREL_SOURCE_DIR "/OmbrelRecord/Resources/sample/recording.mp4");
    std::erase_if(views, [](const Snapshot::View& view) {
        static const std::set<QString> looked{QStringLiteral("home-camera"), QStringLiteral("home-access"),
                                              QStringLiteral("working"), QStringLiteral("recording"),
                                              QStringLiteral("discard")};
        return !looked.contains(view.name);
    });
    ASSERT_EQ(views.size(), 5u);
    std::set<std::string> cutOff;
    for (Snapshot::View& view : views)
        view.ready = [&cutOff, ready = view.ready, name = view.name.toStdString()](QQuickItem& item) {
            if (ready && !ready(item)) return false;
            findCutOff(item, name, cutOff);
            return true;
        };
    EXPECT_THAT(Snapshot::write(views, folder.path().toStdString()), testing::IsEmpty());
    EXPECT_THAT(cutOff, testing::IsEmpty());
    OmbrelRecordApp::translate(QLocale::c());
}

} // namespace
} // namespace OmbrelRecord
