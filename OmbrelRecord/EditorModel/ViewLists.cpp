#include "OmbrelRecord/EditorModel/ViewLists.h"

#include <string_view>

namespace OmbrelRecord::ViewLists {

using namespace RecordCore;

namespace {

QString reasonName(SpeedSegment::Reason reason) {
    const std::string_view word = RecordCore::name(reason);
    return QString::fromUtf8(word.data(), static_cast<qsizetype>(word.size()));
}

} // namespace

QString text(const Uuid& id) {
    return QString::fromStdString(id.text());
}

QVariantMap range(double start, double end) {
    return {{QStringLiteral("start"), start}, {QStringLiteral("end"), end}};
}

QVariantList ranges(const std::vector<TimeRange>& all) {
    QVariantList list;
    for (const TimeRange& each : all)
        list.append(range(each.start, each.end));
    return list;
}

QVariantList segments(const std::vector<SpeedSegment>& all) {
    QVariantList list;
    for (const SpeedSegment& segment : all) {
        QVariantMap map = range(segment.start, segment.end);
        map.insert(QStringLiteral("speed"), segment.speed);
        map.insert(QStringLiteral("reason"), reasonName(segment.reason));
        list.append(map);
    }
    return list;
}

QVariantMap block(const SpeedBlock& block) {
    QVariantMap map = range(block.start, block.end);
    map.insert(QStringLiteral("id"), text(block.id));
    map.insert(QStringLiteral("speed"), block.speed);
    map.insert(QStringLiteral("reason"), reasonName(block.reason));
    return map;
}

QVariantMap block(const ZoomBlock& block) {
    QVariantMap map = range(block.start, block.end);
    map.insert(QStringLiteral("id"), text(block.id));
    map.insert(QStringLiteral("x"), block.x);
    map.insert(QStringLiteral("y"), block.y);
    map.insert(QStringLiteral("zoom"), block.zoom);
    return map;
}

QVariantMap word(const CaptionWord& word) {
    QVariantMap map = range(word.start, word.end);
    map.insert(QStringLiteral("text"), QString::fromStdString(word.text));
    return map;
}

QVariantList captionRows(const std::vector<CaptionWord>& words) {
    constexpr std::size_t longest = 6; // words
    constexpr double pause = 0.7;      // seconds
    QVariantList list;
    std::size_t first = 0;
    for (std::size_t i = 1; i <= words.size(); ++i) {
        const char last = words[i - 1].text.empty() ? ' ' : words[i - 1].text.back();
        if (i < words.size() && i - first < longest && words[i].start - words[i - 1].end <= pause &&
            last != '.' && last != '!' && last != '?')
            continue;
        list.append(QVariantMap{{QStringLiteral("first"), static_cast<int>(first)},
                                {QStringLiteral("count"), static_cast<int>(i - first)},
                                {QStringLiteral("start"), words[first].start}});
        first = i;
    }
    return list;
}

} // namespace OmbrelRecord::ViewLists
