// Requests from outside reaching the window: a show request for a document
// already on show brings its window forward and goes to the anchor; the
// quick entry saves a note into the inbox; inserted text lands in the shown
// document; a file from elsewhere is edited in a window of its own, and
// handed-over files open in windows that come back at the next start.
#include "app_tests.h"
#include "document/document_pane.h"
#include "document/formatted_view.h"
#include "document/plain_text_view.h"
#include "document_window.h"
#include "document_windows.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "launch_requests.h"
#include "main_window.h"
#include "platform/settings.h"
#include "quick_entry_window.h"
#include "shell/shell_keys.h"
#include "shell/single_instance.h"
#include "shell/url_actions.h"
#include "store/keys.h"
#include "store/recent_items.h"
#include "support/test_environment.h"
#include "window_fixture.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

class OutsideRequestsTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;

    QString item(const QString &name) const { return m_fixture.item(name); }
    tl::app::DocumentPane *document() const { return m_fixture.window().documentPane(); }

    static tl::app::QuickEntryWindow *quickEntry()
    {
        for (QWidget *window : QApplication::topLevelWidgets())
            if (auto *entry = qobject_cast<tl::app::QuickEntryWindow *>(window);
                entry && entry->isVisible())
                return entry;
        return nullptr;
    }

private Q_SLOTS:
    void init()
    {
        QByteArray longText = "# Long\n\n";
        for (int line = 0; line < 150; ++line)
            longText += "A paragraph to scroll past.\n\n";
        longText += "<h2 id=\"far\">Far</h2>\n\nThe end.\n";
        QVERIFY(m_fixture.open(QStringLiteral("RequestLibrary"), {{"Book/Long.md", longText},
                                                                  {"Book/Short.txt", "Short\n"},
                                                                  {"Inbox/Kept.txt", "Kept\n"}}));
        tl::platform::settings().set(QLatin1String(tl::keys::setting::DefaultInbox),
                                     QStringLiteral("Inbox"));
    }

    void cleanup()
    {
        delete quickEntry();
        // A closed quick entry deletes itself later.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_fixture.close();
    }

    void aSecondShowRequestGoesToTheAnchorInTheOpenWindow()
    {
        m_fixture.openBook(item("Book"), item("Book/Long.md"));
        m_fixture.selectRow(item("Book/Long.md"));
        tl::app::FormattedView *view = document()->formattedView();
        QTRY_VERIFY(view->pageIsReady());
        QCOMPARE(view->scrollOffset(), 0.0);

        int shownAnew = 0;
        const tl::ScopedObserver shows(
            QLatin1String(tl::events::ShowItemAtPath),
            [&shownAnew](const QString &, const QVariantMap &) { ++shownAnew; });
        tl::shell::handleTavelleURL(QStringLiteral("tavelle://show/Book/Long.md#far"));
        QCOMPARE(shownAnew, 0);
        QCOMPARE(document()->controller().anchor, QStringLiteral("far"));
        QTRY_VERIFY(view->scrollOffset() > 0);

        // A document no window shows is shown as ever.
        tl::shell::handleTavelleURL(QStringLiteral("tavelle://show/Book/Short.txt"));
        QCOMPARE(shownAnew, 1);
    }

    void theQuickEntrySavesItsNoteInTheInbox()
    {
        tl::app::runLaunchRequests({QLatin1String(tl::shell::kQuickEntryRequest)});
        QVERIFY(!quickEntry());
        apptest::WindowFixture::letTimersRun(0.3);
        tl::app::QuickEntryWindow *entry = quickEntry();
        QVERIFY(entry);
        tl::app::PlainTextView *editor = entry->documentPane()->plainTextView();
        QTest::keyClicks(editor, "Groceries");
        QTest::keyClick(editor, Qt::Key_Return);
        QTest::keyClicks(editor, "Milk");
        // A document selected in the list meanwhile shows in the main window only.
        m_fixture.openBook(item("Book"), item("Book/Short.txt"));
        m_fixture.selectRow(item("Book/Short.txt"));
        QCOMPARE(editor->toPlainText(), QStringLiteral("Groceries\nMilk"));

        entry->close();
        QCOMPARE(tltest::readFile(item("Inbox/Groceries.txt")), QByteArray("Groceries\nMilk"));
    }

    void aFileFromElsewhereIsEditedWhereItIsUnderItsOwnName()
    {
        QTemporaryDir elsewhere;
        const QString file = elsewhere.filePath(QStringLiteral("Letter.txt"));
        tltest::writeFile(file, "Letter\nDear Ann");
        tl::app::DocumentWindow *window = tl::app::openInExtraWindow(file);
        QCOMPARE(window->windowTitle(), QStringLiteral("Letter.txt[*] — Tavelle"));
        tl::app::PlainTextView *editor = window->documentPane()->plainTextView();
        QCOMPARE(editor->toPlainText(), QStringLiteral("Letter\nDear Ann"));
        QVERIFY(tl::app::showInOpenWindow(file));

        // In the library a new first line would rename the file, and no text
        // at all would delete it.
        editor->moveCursor(QTextCursor::Start);
        QTest::keyClicks(editor, "My ");
        apptest::WindowFixture::letTimersRun();
        QCOMPARE(tltest::readFile(file), QByteArray("My Letter\nDear Ann"));
        editor->selectAll();
        QTest::keyClick(editor, Qt::Key_Delete);
        window->close();
        QCOMPARE(tltest::readFile(file), QByteArray());
        // Its view state is not kept beside it, and no temporary file is left.
        QCOMPARE(QDir(elsewhere.path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList{"Letter.txt"});
    }

    void handedOverFilesOpenInWindowsThatComeBackAtTheNextStart()
    {
        tl::app::openItemsInNewWindow({item("Book/Short.txt")});
        const QVariantList open = tl::app::extraWindowDocuments();
        QCOMPARE(open, (QVariantList{QVariantMap{{"path", item("Book/Short.txt")}}}));
        // A second request brings the same window forward.
        tl::app::openItemsInNewWindow({item("Book/Short.txt")});
        QCOMPARE(tl::app::extraWindowDocuments().size(), 1);
        QVERIFY(document()->shownPath().isEmpty());
        tl::app::viewcontrollerForDocumentWithPath(item("Book/Short.txt"))->window()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(tl::app::extraWindowDocuments().isEmpty());

        tltest::writeFile(tl::store::recentItemsPath(), "kept as it was");
        tl::app::reopenDocuments(open + QVariantList{QVariantMap{{"path", item("Book/Gone.txt")}}},
                                 &m_fixture.window());
        QCOMPARE(tl::app::extraWindowDocuments(), open);
        QCOMPARE(tltest::readFile(tl::store::recentItemsPath()), QByteArray("kept as it was"));
        tl::app::viewcontrollerForDocumentWithPath(item("Book/Short.txt"))->window()->close();
    }

    void aMainWindowClosedAtTheEndClosesAgainBesideTheReopenedWindows()
    {
        tl::platform::Settings &settings = tl::platform::settings();
        settings.set(QLatin1String(tl::keys::setting::HideBrowserOnLaunch), true);
        QSignalSpy lastClosed(qApp, &QGuiApplication::lastWindowClosed);
        tl::app::MainWindow &main = m_fixture.window();
        // With no document to stand beside it, the main window stays.
        tl::app::reopenDocuments({QVariantMap{{"path", item("Book/Gone.txt")}}}, &main);
        QVERIFY(main.isVisible());
        const QVariantList open{QVariantMap{{"path", item("Book/Short.txt")}}};
        tl::app::reopenDocuments(open, &main);
        QVERIFY(!main.isVisible());
        QVERIFY(!main.windowState().mainWindowVisible);
        QCOMPARE(tl::app::extraWindowDocuments(), open);
        QCOMPARE(lastClosed.size(), 0);

        // The document window's menu brings the library back, as a start
        // with nothing to ask for does.
        QWidget *extra =
            tl::app::viewcontrollerForDocumentWithPath(item("Book/Short.txt"))->window();
        const QList<QAction *> actions = extra->findChildren<QAction *>();
        const auto library = std::find_if(actions.begin(), actions.end(), [](QAction *action) {
            return action->text() == QLatin1String("&Library Window");
        });
        QVERIFY(library != actions.end());
        (*library)->trigger();
        QVERIFY(main.isVisible());
        QVERIFY(main.windowState().mainWindowVisible);
        QVERIFY(tl::app::bringsMainWindowForward({}));
        extra->close();
        settings.remove(QLatin1String(tl::keys::setting::HideBrowserOnLaunch));
    }

    void insertedTextLandsInTheShownDocument()
    {
        m_fixture.openBook(item("Inbox"), item("Inbox/Kept.txt"));
        m_fixture.selectRow(item("Inbox/Kept.txt"));
        document()->plainTextView()->moveCursor(QTextCursor::End);
        tl::app::runLaunchRequests({tl::shell::insertRequest(QStringLiteral("From elsewhere"))});
        apptest::WindowFixture::letTimersRun();
        QCOMPARE(tltest::readFile(item("Inbox/Kept.txt")), QByteArray("Kept\nFrom elsewhere"));
    }
};

} // namespace

QObject *apptest::makeOutsideRequestsTest()
{
    return new OutsideRequestsTest;
}

#include "outside_requests_test.moc"
