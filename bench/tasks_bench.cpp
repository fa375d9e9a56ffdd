// The task lists of a library of 100,000 documents in 1,000 task lists: the
// collection of all task lists against a plain walk of the same tree, and the
// due list against reading every task plist once.
#include "foundation/plist.h"
#include "isolated_home.h"
#include "library_generator.h"
#include "platform/settings.h"
#include "ratio_reporter.h"
#include "store/library_root.h"
#include "tasks/due_tasks.h"
#include "tasks/reminder_rebuild.h"
#include "tasks/task_lists.h"

#include <QDirIterator>
#include <QTemporaryDir>

namespace {

constexpr int kLists = 1000;
constexpr int kDocumentsPerList = 100;
// Of each list's tasks, this many are overdue and as many due later.
constexpr int kDatedPerList = 5;

QString library()
{
    static QTemporaryDir dir;
    static const bool made = [] {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        for (int l = 0; l < kLists; ++l) {
            const QString book = dir.path() + QStringLiteral("/Area %1/List %2").arg(l / 50).arg(l);
            QDir().mkpath(book);
            QVariantMap details;
            for (int d = 0; d < kDocumentsPerList; ++d) {
                const QString name = QStringLiteral("Task %1.md").arg(d);
                bench::writeBytes(book + u'/' + name, "A task\n");
                QVariantMap record{{"Changed", now}};
                if (d < kDatedPerList)
                    record.insert("DueDate", now.addDays(-1 - d));
                else if (d < 2 * kDatedPerList)
                    record.insert("DueDate", now.addDays(30 + d));
                else if (d % 3 == 0)
                    record.insert("State", "done");
                details.insert(name, record);
            }
            bench::writeBytes(book + QStringLiteral("/TLTasklistDetails.plist"),
                              tl::plist::toXml(details));
        }
        return true;
    }();
    (void)made;
    tl::store::setLibraryRootOverride(dir.path());
    return dir.path();
}

// The floor of the collection: every entry below the root listed.
void BM_PlainWalk(benchmark::State &state)
{
    const QString root = library();
    for (auto _ : state) {
        qint64 entries = 0;
        QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            it.next();
            ++entries;
        }
        benchmark::DoNotOptimize(entries);
    }
}

void BM_CollectTaskLists(benchmark::State &state)
{
    library();
    for (auto _ : state) {
        if (tl::tasks::tl_listOfTasklists().size() != kLists)
            state.SkipWithError("task lists lost");
    }
}

// The floor of the due list: every task plist read and parsed once.
void BM_ReadEveryTaskPlist(benchmark::State &state)
{
    library();
    const QStringList books = tl::tasks::tl_listOfTasklists();
    for (auto _ : state) {
        qint64 records = 0;
        for (const QString &book : books) {
            QFile f(book + QStringLiteral("/TLTasklistDetails.plist"));
            if (f.open(QIODevice::ReadOnly))
                records += tl::plist::parse(f.readAll()).value_or(QVariant()).toMap().size();
        }
        benchmark::DoNotOptimize(records);
    }
}

void BM_DueList(benchmark::State &state)
{
    library();
    tl::tasks::tl_listOfTasklists();
    tl::platform::settings().set(QStringLiteral("dueTasksLookAhead"), 1);
    // The first run writes the overdue counters the generated lists lack.
    tl::tasks::tl_arrayOfDueTasks();
    for (auto _ : state) {
        const tl::tasks::DueTasks due = tl::tasks::tl_arrayOfDueTasks();
        if (due.rows.size() != kLists * kDatedPerList)
            state.SkipWithError("due tasks lost");
    }
}

// Every dated pending task of the library made a reminder row, and the
// future ones scheduled.
void BM_ReminderRebuild(benchmark::State &state)
{
    library();
    tl::tasks::tl_listOfTasklists();
    tl::platform::ReminderCentre centre;
    for (auto _ : state) {
        tl::tasks::rebuildReminders(centre);
        if (centre.scheduled().size() != kLists * kDatedPerList)
            state.SkipWithError("reminders lost");
    }
}

BENCHMARK(BM_PlainWalk)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CollectTaskLists)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadEveryTaskPlist)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DueList)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReminderRebuild)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    const IsolatedHome home;
    return runBenchmarksWithRatios(
        argc, argv,
        {{"BM_CollectTaskLists", "BM_PlainWalk", "collection of task lists", "plain walk", 1.2},
         {"BM_DueList", "BM_ReadEveryTaskPlist", "due list", "reading every task plist", 2.0},
         {"BM_ReminderRebuild", "BM_ReadEveryTaskPlist", "reminder rebuild",
          "reading every task plist", 2.0}});
}
