#pragma once

#include "foundation/regex.h"

#include <QString>
#include <QStringView>
#include <initializer_list>
#include <utility>

// Building blocks for the loops that edit a text's matches from the last to
// the first.
namespace tl::convert {

// The matched text with some of its capture groups replaced. The groups are
// given in any order, must not overlap, and a group that took no part in the
// match is left out.
QString withGroupsReplaced(const RegexMatch &match, QStringView text,
                           std::initializer_list<std::pair<int, QString>> groups);

// `text` with each range [start, end) left out; the ranges are in order and
// do not overlap.
QString withRangesRemoved(const QString &text,
                          const QList<std::pair<qsizetype, qsizetype>> &ranges);

} // namespace tl::convert
