#include "sync/document_conflict.h"

#include <gtest/gtest.h>

using namespace tl::sync;

namespace {

TEST(VersionTitles, NamesAndDatesOfBothVersions)
{
    const QDateTime when(QDate(2024, 3, 9), QTime(17, 30, 2), Qt::UTC);
    const QString at = QStringLiteral(": 3/9/24, 5:30:02") + QChar(0x202f) + "PM";
    const FileVersion studio{"a", "Studio", when, {}, {}};
    const FileVersion unnamed{"b", {}, when, {}, {}};
    const FileVersion deleted{"c", "Laptop", std::nullopt, {}, {}};
    const FileVersion person{"d", "Laptop", when, "Ann", "Lee"};
    const FileVersion longName{"e", QString(30, u'x'), when, {}, {}};
    const struct
    {
        FileVersion current, conflict;
        bool shared;
        QString currentTitle, conflictTitle;
    } cases[] = {
        {studio, unnamed, false, "Studio" + at, "Version 2" + at},
        {unnamed, deleted, false, "Version 1" + at, "Laptop: Deleted"},
        {studio, person, false, "Studio" + at, "Ann Lee" + at},
        // Two of "you" are told apart by their computers' short names.
        {studio, deleted, true, "Studio" + at, "Laptop: Deleted"},
        {longName, studio, true, "Modified by you" + at, "Studio" + at},
        {studio, person, true, "Modified by you" + at, "Ann Lee" + at},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.currentTitle.toStdString());
        const VersionTitles titles = versionTitles(c.current, c.conflict, c.shared);
        EXPECT_EQ(titles.current, c.currentTitle);
        EXPECT_EQ(titles.conflict, c.conflictTitle);
    }
}

} // namespace
