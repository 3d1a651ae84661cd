#include "OmbrelRecord/Application/StillLife.h"
#include "OmbrelRecord/Entry/Backends.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtQuick/QQuickItem>
#include <cstdlib>
#include <gmock/gmock.h>

namespace OmbrelRecord {
namespace {

/// What a user can act on: everything that takes the keyboard's focus, and every control.
bool interactive(const QQuickItem& item) {
    for (const char* kind :
         {"QQuickAbstractButton", "QQuickSlider", "QQuickComboBox", "QQuickTextInput", "QQuickTextEdit"})
        if (item.inherits(kind)) return true;
    return item.activeFocusOnTab();
}

std::string described(const QQuickItem& item) {
    return std::string(item.metaObject()->className()) + " in " +
           (item.parentItem() ? item.parentItem()->metaObject()->className() : "nothing");
}

void findNameless(QQuickItem& item, std::vector<std::string>& nameless, int& seen) {
    if (!item.isVisible()) return;
    if (interactive(item)) {
        ++seen;
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&item);
        if (!face || face->text(QAccessible::Name).trimmed().isEmpty()) nameless.push_back(described(item));
        // A scope that holds others has none.
        if (face && face->role() == QAccessible::NoRole && !item.inherits("QQuickFocusScope"))
            nameless.push_back("without a role: " + described(item));
        const QString tip = item.property("tip").toString();
        if (!tip.isEmpty() && tip == item.property("text").toString())
            nameless.push_back("says it twice: " + described(item));
    }
    for (QQuickItem* child : item.childItems())
        findNameless(*child, nameless, seen);
}

const std::filesystem::path sample =
    std::filesystem::path(OMBREL_SOURCE_DIR) / "OmbrelRecord/Resources/sample";

QQuickItem* labelled(QQuickItem& item, const QString& text) {
    if (item.isVisible() && item.property("text").toString() == text) return &item;
    for (QQuickItem* child : item.childItems())
        if (QQuickItem* found = labelled(*child, text)) return found;
    return nullptr;
}

TEST(Home, IsMirroredWithWhatPopsUpWhereTextRunsFromRightToLeft) {
    const QTemporaryDir folder;
    const auto media = makeMediaBackend();
    std::vector<Snapshot::View> views = StillLife::views(*media, sample / "recording.mp4");
    std::erase_if(views,
                  [](const Snapshot::View& view) { return view.name != QStringLiteral("home-sources"); });
    ASSERT_EQ(views.size(), 1u);
    std::map<std::string, double> middles;
    views[0].ready = [&, ready = views[0].ready](QQuickItem& item) {
        if (ready && !ready(item)) return false;
        QQuickItem* root = &item;
        while (root->parentItem())
            root = root->parentItem();
        for (const char* text : {"Ombrel Record", "What to record"})
            if (QQuickItem* label = labelled(*root, QString::fromLatin1(text)))
                middles[text] = label->mapToScene(label->boundingRect().center()).x() / root->width();
        return true;
    };
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    EXPECT_THAT(Snapshot::write(views, folder.path().toStdString()), testing::IsEmpty());
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    EXPECT_GT(middles["Ombrel Record"], 0.5);
    EXPECT_GT(middles["What to record"], 0.5);
}

TEST(Home, IsDrawnInEveryStateAndEverythingInItHasAName) {
    const QTemporaryDir folder;
    const char* kept = std::getenv("OMBREL_PICTURES");
    const std::filesystem::path place = kept ? kept : folder.path().toStdString();
    const auto media = makeMediaBackend();
    std::vector<Snapshot::View> views = StillLife::views(*media, sample / "recording.mp4");
    std::map<std::string, int> seen;
    std::vector<std::string> nameless;
    for (Snapshot::View& view : views) {
        const auto ready = view.ready;
        view.ready = [&, ready, name = view.name.toStdString()](QQuickItem& item) {
            if (ready && !ready(item)) return false;
            // From the window's root, so that what floats over the view is looked at, too.
            QQuickItem* root = &item;
            while (root->parentItem())
                root = root->parentItem();
            std::vector<std::string> found;
            seen[name] = 0;
            findNameless(*root, found, seen[name]);
            for (const std::string& one : found)
                nameless.push_back(name + ": " + one);
            return true;
        };
    }
    EXPECT_THAT(Snapshot::write(views, place), testing::IsEmpty());
    EXPECT_THAT(nameless, testing::IsEmpty());
    EXPECT_GE(seen["home"], 12) << "cards, switches, buttons";
    EXPECT_GE(seen["home-sources"], seen["home"] + 6) << "five tiles and a way out";
    EXPECT_EQ(seen["recording"], 2);
    for (const Snapshot::View& view : views) {
        const QImage dark(QString::fromStdString((place / (view.name.toStdString() + ".png")).string()));
        EXPECT_EQ(dark.size(), view.size) << view.name.toStdString();
    }
}

} // namespace
} // namespace OmbrelRecord
