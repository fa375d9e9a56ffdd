// Tasks through the window: a click on a row's task mark or the document
// view's task button steps the task on, a book becomes a task list and stops
// being one, the due-date dialog sets a date with its repeat.
#include "action_registry.h"
#include "app_tests.h"
#include "browser/document_list_model.h"
#include "document/document_pane.h"
#include "document/task_button.h"
#include "document_list_pane.h"
#include "due_date_dialog.h"
#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "list_delegate.h"
#include "main_window.h"
#include "outline_pane.h"
#include "support/test_environment.h"
#include "tasks/due_dates.h"
#include "tasks/task_list.h"
#include "window_fixture.h"

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QFileInfo>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimeEdit>
#include <QTimer>
#include <QTreeView>

namespace {

using tl::app::ActionId;
using tl::app::MainWindow;
using tl::browser::DocumentListModel;

class TasksWindowTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;

    QString item(const QString &name) const { return m_fixture.item(name); }
    MainWindow *window() const { return &m_fixture.window(); }

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_fixture.open(QStringLiteral("TaskLibrary"),
                               {{"Errands/Call.md", "Call\n"},
                                {"Errands/TLTasklistDetails.plist",
                                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
                                 "version=\"1.0\"><dict/></plist>\n"},
                                {"Notes/Idea.md", "Idea\n"}}));
    }

    void cleanup() { m_fixture.close(); }

    void aClickOnTheTaskMarkStepsTheTaskOn()
    {
        window()->outlinePane()->selectBook(item("Errands"));
        QTRY_VERIFY(window()->listModel().indexForPath(item("Errands/Call.md")).isValid());
        QListView *list = window()->listPane()->view();
        const QModelIndex row = window()->listModel().indexForPath(item("Errands/Call.md"));
        QCOMPARE(row.data(DocumentListModel::TaskIconRole).toString(), QStringLiteral("task-open"));
        const QPoint mark = tl::app::ListDelegate::iconRect(list->visualRect(row)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, mark);
        QCOMPARE(tl::tasks::tl_getAllTaskDetails(item("Errands/Call.md"))
                     .value_or(QVariantMap())
                     .value("State")
                     .toString(),
                 QStringLiteral("started"));
        QTRY_COMPARE(window()
                         ->listModel()
                         .indexForPath(item("Errands/Call.md"))
                         .data(DocumentListModel::TaskIconRole)
                         .toString(),
                     QStringLiteral("task-started"));
        // The mark is no way into the document.
        QVERIFY(list->selectionModel()->selectedRows().isEmpty());
    }

    void aBookBecomesATaskListAndStopsBeingOne()
    {
        window()->outlinePane()->selectBook(item("Notes"));
        window()->outlinePane()->view()->setFocus();
        QAction *toggle = window()->actions().action(ActionId::ToggleTaskList);
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

    void theDocumentViewsTaskButtonStepsOnAndALongPressSetsTheDueDate()
    {
        const QString task = item("Errands/Call.md");
        window()->outlinePane()->selectBook(item("Errands"));
        QTRY_VERIFY(window()->listModel().indexForPath(task).isValid());
        window()->listPane()->view()->setCurrentIndex(window()->listModel().indexForPath(task));
        tl::app::TaskButton *button = window()->documentPane()->taskButton();
        QTRY_COMPARE(button->iconName(), QStringLiteral("task-open"));
        QVERIFY(button->isVisibleTo(window()));
        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_COMPARE(button->iconName(), QStringLiteral("task-started"));

        // The dialog is modal: answered from the event loop once it shows.
        QString shown;
        QTimer answer;
        connect(&answer, &QTimer::timeout, [&] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                shown = QString::fromUtf8(dialog->metaObject()->className());
                dialog->reject();
            }
        });
        answer.start(10);
        button->setHoldInterval(0);
        QTest::mousePress(button, Qt::LeftButton);
        QTRY_COMPARE(shown, QStringLiteral("tl::app::DueDateDialog"));
        QTest::mouseRelease(button, Qt::LeftButton);
        // The long press is no click: the state stays.
        QCOMPARE(button->iconName(), QStringLiteral("task-started"));

        window()->outlinePane()->selectBook(item("Notes"));
        QTRY_VERIFY(window()->listModel().indexForPath(item("Notes/Idea.md")).isValid());
        window()->listPane()->view()->setCurrentIndex(
            window()->listModel().indexForPath(item("Notes/Idea.md")));
        QTRY_VERIFY(!button->isVisibleTo(window()));
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
