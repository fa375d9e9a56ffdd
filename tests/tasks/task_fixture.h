#pragma once

// A library with one task list, "Tasks", on a manual clock.

#include "foundation/dates.h"
#include "store/library_fixture.h"
#include "tasks/task_keys.h"

namespace tltest {

class TaskListTest : public LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        clock_ = &useManualClock(now());
        book_ = makeFolder(inRoot("Tasks"));
        writePlist(plist(), QVariantMap());
    }

    static QDateTime now() { return QDateTime(QDate(2024, 3, 5), QTime(12, 0), Qt::UTC); }
    QString plist() const { return book_ + "/TLTasklistDetails.plist"; }
    QString task(const QString &name) { return makeFile(book_ + "/" + name); }
    QVariantMap details() const { return readPlist(plist()); }
    QVariantMap record(const QString &name) const { return details().value(name).toMap(); }

    tl::ManualClock *clock_ = nullptr;
    QString book_;
};

} // namespace tltest
