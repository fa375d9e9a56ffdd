// A library a sync client shares, through the window: conflict copies that
// arrive are settled or listed, the open document's alert keeps what the
// user chooses, the document stays read-only until then, and the status
// line tells how many items are not yet in sync.
#include "app_tests.h"
#include "browser/document_list_model.h"
#include "browser/outline_model.h"
#include "browser/smart_books.h"
#include "document/conflict_bar.h"
#include "document/document_pane.h"
#include "document/plain_text_view.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "main_window.h"
#include "outline_pane.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "support/test_environment.h"
#include "sync/document_conflict.h"
#include "window_fixture.h"

#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

namespace {

using apptest::WindowFixture;

const QString kCopy = QStringLiteral("Notes/Note.sync-conflict-20240302-090000-ABCD123.txt");
const QByteArray kEmptyDetails = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
                                 "version=\"1.0\"><dict/></plist>\n";

class SyncWindowTest : public QObject
{
    Q_OBJECT
    WindowFixture m_fixture;

    QString item(const QString &name) const { return m_fixture.item(name); }
    tl::app::DocumentPane *document() const { return m_fixture.window().documentPane(); }

    // Opens Note.txt with another computer's copy beside it and lets the
    // check after showing it run; the alert gets the answer.
    void openNoteInConflict(int answer)
    {
        QVERIFY(tltest::writeFile(item(kCopy), "Theirs\n"));
        m_fixture.openBook(item("Notes"), item("Notes/Note.txt"));
        apptest::alerts().pushAnswer(answer);
        m_fixture.selectRow(item("Notes/Note.txt"));
        WindowFixture::letTimersRun(tl::sync::DocumentConflict::kCheckDelay);
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_fixture.open(QStringLiteral("SyncedLibrary"),
                               {{".stfolder/.stignore", ""},
                                {"Notes/Note.txt", "Mine\n"},
                                {"Book/Plan.md", "Plan\n"},
                                {"Book/TLTasklistDetails.plist", kEmptyDetails}}));
    }

    void cleanup() { m_fixture.close(); }

    void arrivingCopiesAreSettledOrListedThroughTheOneWatcher()
    {
        const QString taskCopy =
            item("Book/TLTasklistDetails.sync-conflict-20240302-090000-ABCD123.plist");
        QVERIFY(tltest::writeFile(taskCopy, kEmptyDetails));
        QVERIFY(tltest::writeFile(item(kCopy), "Theirs\n"));
        // The outline's watcher sees them arrive; the report follows a moment later.
        QTRY_VERIFY((WindowFixture::letTimersRun(0.3), !QFileInfo::exists(taskCopy)));
        QCOMPARE(tl::platform::settings().array("iCloudArrayOfUnresolvedConflicts"),
                 QVariantList{"/Notes/Note.txt"});
        QVERIFY(QFileInfo::exists(item(kCopy)));

        // The list of documents awaiting a choice is the conflicts' smart book.
        QTreeView *outline = m_fixture.window().outlinePane()->view();
        const auto *books = static_cast<const tl::browser::OutlineModel *>(outline->model());
        QTRY_VERIFY(books->smartBookIndex(tl::browser::ICloudConflicts).isValid());
        outline->setCurrentIndex(books->smartBookIndex(tl::browser::ICloudConflicts));
        QTRY_VERIFY(m_fixture.window().listModel().indexForPath(item("Notes/Note.txt")).isValid());
        m_fixture.selectRow(item("Notes/Note.txt"));
    }

    void theAlertKeepsWhatTheUserChooses_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QByteArray>("note");
        QTest::addColumn<QString>("keptBeside");
        QTest::newRow("current") << 0 << QByteArray("Mine\n") << QString();
        QTest::newRow("conflict") << 1 << QByteArray("Theirs\n") << QString();
        QTest::newRow("both") << 2 << QByteArray("Mine\n")
                              << QStringLiteral("Notes/Note (ABCD123).txt");
    }

    void theAlertKeepsWhatTheUserChooses()
    {
        QFETCH(int, answer);
        const int shown = apptest::alerts().shownAlerts().size();
        openNoteInConflict(answer);
        const QList<tl::platform::Alert> alerts = apptest::alerts().shownAlerts();
        QCOMPARE(alerts.size(), shown + 1);
        const tl::platform::Alert &alert = alerts.last();
        QCOMPARE(alert.message,
                 QStringLiteral("Modifications are not in sync.\nChoose which versions to keep."));
        QCOMPARE(alert.informativeText, QStringLiteral("Note.txt"));
        QCOMPARE(alert.buttons.size(), 4);
        QVERIFY(alert.buttons[1].startsWith(QStringLiteral("ABCD123: ")));
        QCOMPARE(alert.buttons.mid(2), (QStringList{"Keep Both", "Continue in Read Only Mode"}));

        QFETCH(QByteArray, note);
        QFETCH(QString, keptBeside);
        QCOMPARE(tltest::readFile(item("Notes/Note.txt")), note);
        QVERIFY(!QFileInfo::exists(item(kCopy)));
        if (!keptBeside.isEmpty())
            QCOMPARE(tltest::readFile(item(keptBeside)), QByteArray("Theirs\n"));
        QCOMPARE(document()->plainTextView()->toPlainText(), QString::fromUtf8(note));
        QVERIFY(!document()->conflictBar()->isVisible());
        QVERIFY(!document()->plainTextView()->isReadOnly());
    }

    void readOnlyRefusesEditsAndAsksAgain()
    {
        openNoteInConflict(3);
        tl::app::PlainTextView *editor = document()->plainTextView();
        QVERIFY(editor->isReadOnly());
        QVERIFY(document()->conflictBar()->isVisible());
        QVERIFY(document()->conflictBar()->button(1)->text().startsWith("ABCD123: "));

        const int shown = apptest::alerts().shownAlerts().size();
        apptest::alerts().pushAnswer(3);
        editor->setFocus();
        QTest::keyClicks(editor, "x");
        QCOMPARE(apptest::alerts().shownAlerts().size(), shown + 1);
        QCOMPARE(editor->toPlainText(), QStringLiteral("Mine\n"));
        WindowFixture::letTimersRun();
        QCOMPARE(tltest::readFile(item("Notes/Note.txt")), QByteArray("Mine\n"));

        // The bar's choice settles it, and typing goes through.
        QTest::mouseClick(document()->conflictBar()->button(0), Qt::LeftButton);
        QVERIFY(!QFileInfo::exists(item(kCopy)));
        QTest::keyClicks(editor, "x");
        QCOMPARE(editor->toPlainText(), QStringLiteral("xMine\n"));
    }

    void theStatusLineCountsWhatIsNotInSync()
    {
        auto *status = m_fixture.window().findChild<QLabel *>(QStringLiteral("syncStatus"));
        QVERIFY(status);
        const std::pair<qint64, const char *> cases[] = {
            {3, "Syncing 3 items"}, {1, "Syncing..."}, {0, ""}};
        for (const auto &[count, text] : cases) {
            tl::NotificationCenter::defaultCenter().post(
                QLatin1String(tl::events::ICloudNumberOfUnsyncedItemsChanged),
                {{QStringLiteral("object"), count}});
            QTRY_COMPARE(status->text(), QLatin1String(text));
        }
    }
};

} // namespace

QObject *apptest::makeSyncWindowTest()
{
    return new SyncWindowTest;
}

#include "sync_window_test.moc"
