// Tasks through the window: a click on a row's task mark steps the task on,
// a book becomes a task list and stops being one, the due-date dialog sets
// a date with its repeat.
#include "action_registry.h"
#include "app_tests.h"
#include "browser/document_list_model.h"
#include "browser/event_bridge.h"
#include "document_list_pane.h"
#include "due_date_dialog.h"
#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "list_delegate.h"
#include "main_window.h"
#include "outline_pane.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "support/test_environment.h"
#include "tasks/due_dates.h"
#include "tasks/task_list.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFileInfo>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimeEdit>
#include <QTreeView>
#include <memory>

namespace {

using tl::app::ActionId;
using tl::app::MainWindow;
using tl::browser::DocumentListModel;

class TasksWindowTest : public QObject
{
    Q_OBJECT
    QString m_library;
    std::unique_ptr<tl::browser::EventBridge> m_bridge;
    std::unique_ptr<MainWindow> m_window;

    QString item(const QString &name) const { return m_library + u'/' + name; }

private Q_SLOTS:
    void init()
    {
        m_library = tltest::makeTemporaryFolder(QStringLiteral("TaskLibrary"));
        QVERIFY(tltest::writeFile(item("Errands/Call.md"), "Call\n"));
        QVERIFY(tltest::writeFile(item("Errands/TLTasklistDetails.plist"),
                                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
                                  "version=\"1.0\"><dict/></plist>\n"));
        QVERIFY(tltest::writeFile(item("Notes/Idea.md"), "Idea\n"));
        tl::platform::settings().set(QLatin1String(tl::keys::setting::TavelleFolder), m_library);
        m_bridge = std::make_unique<tl::browser::EventBridge>();
        m_window = std::make_unique<MainWindow>(*m_bridge);
        m_window->openLibrary();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void cleanup()
    {
        m_window.reset();
        m_bridge.reset();
    }

    void aClickOnTheTaskMarkStepsTheTaskOn()
    {
        m_window->outlinePane()->selectBook(item("Errands"));
        QTRY_VERIFY(m_window->listModel().indexForPath(item("Errands/Call.md")).isValid());
        QListView *list = m_window->listPane()->view();
        const QModelIndex row = m_window->listModel().indexForPath(item("Errands/Call.md"));
        QCOMPARE(row.data(DocumentListModel::TaskIconRole).toString(), QStringLiteral("task-open"));
        const QPoint mark = tl::app::ListDelegate::iconRect(list->visualRect(row)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, mark);
        QCOMPARE(tl::tasks::tl_getAllTaskDetails(item("Errands/Call.md"))
                     .value_or(QVariantMap())
                     .value("State")
                     .toString(),
                 QStringLiteral("started"));
        QTRY_COMPARE(m_window->listModel()
                         .indexForPath(item("Errands/Call.md"))
                         .data(DocumentListModel::TaskIconRole)
                         .toString(),
                     QStringLiteral("task-started"));
        // The mark is no way into the document.
        QVERIFY(list->selectionModel()->selectedRows().isEmpty());
    }

    void aBookBecomesATaskListAndStopsBeingOne()
    {
        m_window->outlinePane()->selectBook(item("Notes"));
        m_window->outlinePane()->view()->setFocus();
        QAction *toggle = m_window->actions().action(ActionId::ToggleTaskList);
        QTRY_VERIFY(toggle->isEnabled());
        QCOMPARE(toggle->text(), QStringLiteral("Make Task List"));
        toggle->trigger();
        QVERIFY(QFileInfo::exists(item("Notes/TLTasklistDetails.plist")));
        QCOMPARE(toggle->text(), QStringLiteral("Stop Being a Task List"));
        toggle->trigger();
        QVERIFY(!QFileInfo::exists(item("Notes/TLTasklistDetails.plist")));
        QVERIFY(QFileInfo::exists(item("Notes/TLTasklistDetails_inactive.plist")));
        QCOMPARE(toggle->text(), QStringLiteral("Make Task List"));
    }

    void theDueDateDialogSetsADateWithoutAlertTimeAndItsRepeat()
    {
        const QString task = item("Errands/Call.md");
        tl::app::DueDateDialog dialog({task});
        // A new date starts at today's midnight.
        QCOMPARE(dialog.timeField()->time(), QTime(0, 0));
        dialog.dateField()->setDate(QDate(2024, 3, 8));
        Q_EMIT dialog.typeSelector()->activated(1);
        QCOMPARE(dialog.factorField()->value(), 1);
        QCOMPARE(dialog.unitSelector()->currentText(), QStringLiteral("week"));
        QTest::mouseClick(dialog.button(QStringLiteral("Set")), Qt::LeftButton);

        tl::tasks::applyDueDateChoice({task}, dialog.choice());
        static_cast<tl::ManualClock &>(tl::clock()).advance(0.3);
        tl::Scheduler::main().runDue();
        QCOMPARE(tl::tasks::tl_dueDateForTask(task),
                 QDateTime(QDate(2024, 3, 8), QTime(0, 1), Qt::LocalTime).toUTC());
        QCOMPARE(tl::tasks::tl_repeatDetails(task).value_or(QStringList()),
                 QStringList({"when due", "week", "1"}));
    }
};

} // namespace

QObject *apptest::makeTasksWindowTest()
{
    return new TasksWindowTest;
}

#include "tasks_window_test.moc"
