#include "convert/match_edits.h"

#include <algorithm>
#include <vector>

namespace tl::convert {

QString withGroupsReplaced(const RegexMatch &match, QStringView text,
                           std::initializer_list<std::pair<int, QString>> groups)
{
    std::vector<std::pair<int, QString>> ordered;
    for (const auto &group : groups) {
        if (match.hasGroup(group.first))
            ordered.push_back(group);
    }
    std::sort(ordered.begin(), ordered.end(), [&](const auto &a, const auto &b) {
        return match.groupStart(a.first) < match.groupStart(b.first);
    });
    QString result;
    qsizetype copied = match.start();
    for (const auto &[group, replacement] : ordered) {
        result.append(text.sliced(copied, match.groupStart(group) - copied));
        result.append(replacement);
        copied = match.groupEnd(group);
    }
    result.append(text.sliced(copied, match.end() - copied));
    return result;
}

QString withRangesRemoved(const QString &text, const QList<std::pair<qsizetype, qsizetype>> &ranges)
{
    if (ranges.isEmpty())
        return text;
    QString result;
    result.reserve(text.size());
    qsizetype copied = 0;
    for (const auto &[start, end] : ranges) {
        result.append(QStringView(text).sliced(copied, start - copied));
        copied = end;
    }
    result.append(QStringView(text).sliced(copied));
    return result;
}

} // namespace tl::convert
