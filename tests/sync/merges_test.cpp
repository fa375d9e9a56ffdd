#include "store/library_fixture.h"
#include "sync/merges.h"

#include <gtest/gtest.h>

using namespace tl::sync;

namespace {

const QDateTime kEarly(QDate(2024, 3, 1), QTime(9, 0), Qt::UTC);
const QDateTime kLate(QDate(2024, 3, 2), QTime(9, 0), Qt::UTC);

QVariantMap record(const QString &state, const QDateTime &changed = {})
{
    QVariantMap r{{"State", state}};
    if (changed.isValid())
        r.insert("Changed", changed);
    return r;
}

TEST(TaskDetailsMerge, NewerRecordWinsPerKeyWithTheTieRules)
{
    struct Case
    {
        const char *label;
        QVariantMap ours;
        QVariantMap theirs;
        const char *expectedState;
    };
    const Case cases[] = {
        {"theirs later", record("started", kEarly), record("done", kLate), "done"},
        {"ours later", record("started", kLate), record("done", kEarly), "started"},
        {"equal dates: theirs", record("started", kEarly), record("done", kEarly), "done"},
        {"no dates: ours", record("started"), record("done"), "started"},
        {"only theirs dated", record("started"), record("done", kEarly), "done"},
        {"only ours dated", record("started", kEarly), record("done"), "started"},
    };
    for (const Case &c : cases) {
        const QVariantMap merged =
            tl_dictionaryByMergingWithTaskDetails({{"a.md", c.ours}}, {{"a.md", c.theirs}});
        EXPECT_EQ(merged.value("a.md").toMap().value("State").toString(), c.expectedState)
            << c.label;
    }
}

TEST(TaskDetailsMerge, KeysOfEitherSideSurviveAndCountersStayOurs)
{
    const QVariantMap ours{{"a.md", record("done", kLate)}, {"__DueItemCount__", "3"}};
    const QVariantMap theirs{
        {"b.md", record("started", kEarly)}, {"__DueItemCount__", "9"}, {"__DoneItemCount__", "4"}};
    const QVariantMap merged = tl_dictionaryByMergingWithTaskDetails(ours, theirs);
    EXPECT_EQ(merged.keys(), (QStringList{"__DueItemCount__", "a.md", "b.md"}));
    EXPECT_EQ(merged.value("__DueItemCount__").toString(), "3");
}

TEST(TaskDetailsMerge, KeysMatchLocaleAwareAndKeepOurSpelling)
{
    const QVariantMap merged = tl_dictionaryByMergingWithTaskDetails(
        {{"Caf\u00e9.md", record("started", kEarly)}}, {{"Cafe\u0301.md", record("done", kLate)}});
    EXPECT_EQ(merged.keys(), QStringList{"Caf\u00e9.md"});
    EXPECT_EQ(merged.value("Caf\u00e9.md").toMap().value("State").toString(), "done");
}

TEST(TagMerge, UnionKeepsOrderAndAddsOnlyNewTags)
{
    EXPECT_EQ(tl_mergeTagListWithList({"@home", "Caf\u00e9"}, {"Cafe\u0301", "@work", "@home"}),
              (QStringList{"@home", "Caf\u00e9", "@work"}));
    EXPECT_EQ(tl_mergeTagListWithList({"a"}, {"A"}), (QStringList{"a", "A"}));
}

FileVersion dated(const QDateTime &date, const QString &computer = {})
{
    FileVersion v;
    v.computerName = computer;
    if (date.isValid())
        v.modified = date;
    return v;
}

TEST(NewestWins, LatestConflictVersionAgainstTheLocalFile)
{
    const QList<FileVersion> versions{dated(kEarly), dated(kLate), dated(kLate), dated({})};
    EXPECT_EQ(newestVersionIndex(versions), 1);
    EXPECT_EQ(newestVersionIndex({dated({})}), std::nullopt);

    struct Case
    {
        QDateTime current;
        QDateTime newest;
        bool localWins;
    };
    const Case cases[] = {
        {kLate, kEarly, true}, {kEarly, kEarly, true}, {kEarly, kLate, false}, {{}, kEarly, false}};
    for (const Case &c : cases)
        EXPECT_EQ(localVersionWins(dated(c.current), dated(c.newest)), c.localWins)
            << c.current.toString().toStdString() << " vs " << c.newest.toString().toStdString();
}

TEST(ComputerNames, ReportAndOpenDocumentRules)
{
    struct Case
    {
        const char *current;
        const char *conflict;
        bool bothEmpty;
        bool choice;
    };
    const Case cases[] = {
        {"", "", true, false},
        {"Studio", "Studio", false, false},
        {"Studio", "", false, true},
        {"", "Laptop", false, true},
        {"Studio", "Laptop", false, true},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(bothComputerNamesEmpty(dated({}, c.current), dated({}, c.conflict)), c.bothEmpty)
            << c.current << "/" << c.conflict;
        EXPECT_EQ(needsChoice(dated({}, c.current), dated({}, c.conflict)), c.choice)
            << c.current << "/" << c.conflict;
    }
}

TEST(KeepBoth, NamesTheVersionAfterItsComputer)
{
    const struct
    {
        const char *document;
        const char *suffix;
        const char *expected;
    } cases[] = {
        {"Note.md", "Studio", "Note (Studio).md"},
        {"archive.tar.gz", "Studio", "archive.tar (Studio).gz"},
        {"Makefile", "Ann Lee", "Makefile (Ann Lee)"},
        {"Note.md", "", "Note.md"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(keepBothFileName(c.document, c.suffix), c.expected);
}

TEST(SyncStatus, Texts)
{
    EXPECT_EQ(syncStatusText(0), "");
    EXPECT_EQ(syncStatusText(1), "Syncing...");
    EXPECT_EQ(syncStatusText(60), "Syncing 60 items");
}

} // namespace
