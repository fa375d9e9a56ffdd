// The paths a person takes through the window: open a library, pick a
// document, type, and see the save land; rename by the first line; drag a
// document into another book.
#include "app_tests.h"
#include "browser/document_list_model.h"
#include "browser/outline_model.h"
#include "document/document_pane.h"
#include "document/plain_text_view.h"
#include "document_list_pane.h"
#include "main_window.h"
#include "outline_pane.h"
#include "support/test_environment.h"
#include "window_fixture.h"

#include <QFileInfo>
#include <QMimeData>
#include <QTest>
#include <QTreeView>

namespace {

using tl::app::MainWindow;
using tl::browser::DocumentListModel;

class MainWindowTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;

    QString book(const QString &name) const { return m_fixture.item(name); }
    MainWindow *window() const { return &m_fixture.window(); }
    void openBook(const QString &path, const QString &row) { m_fixture.openBook(path, row); }
    void selectRow(const QString &path) { m_fixture.selectRow(path); }
    static void letSaveTimersRun() { apptest::WindowFixture::letTimersRun(); }

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_fixture.open(QStringLiteral("WindowLibrary"),
                               {{"Inbox/Note.txt", "Note\nThe first line names it.\n"},
                                {"Inbox/Other.txt", "Other\n"},
                                {"Archive/Old.txt", "Old\n"}}));
    }

    void cleanup() { m_fixture.close(); }

    void typingSavesAfterTheLastKey()
    {
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        selectRow(book("Inbox/Note.txt"));
        tl::app::PlainTextView *editor = window()->documentPane()->plainTextView();
        QVERIFY(editor->isVisible());
        QCOMPARE(editor->toPlainText(), QStringLiteral("Note\nThe first line names it.\n"));

        editor->setFocus();
        editor->moveCursor(QTextCursor::End);
        QTest::keyClicks(editor, "More words.");
        // Nothing is written before the pause after the last key.
        QCOMPARE(tltest::readFile(book("Inbox/Note.txt")),
                 QByteArray("Note\nThe first line names it.\n"));
        letSaveTimersRun();
        QCOMPARE(tltest::readFile(book("Inbox/Note.txt")),
                 QByteArray("Note\nThe first line names it.\nMore words."));
    }

    void aNewFirstLineRenamesTheDocument()
    {
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        selectRow(book("Inbox/Note.txt"));
        tl::app::PlainTextView *editor = window()->documentPane()->plainTextView();
        editor->setFocus();
        editor->moveCursor(QTextCursor::Start);
        editor->moveCursor(QTextCursor::EndOfLine);
        QTest::keyClicks(editor, "book");
        letSaveTimersRun();
        QTRY_VERIFY(QFileInfo::exists(book("Inbox/Notebook.txt")));
        QVERIFY(!QFileInfo::exists(book("Inbox/Note.txt")));
        QCOMPARE(window()->documentPane()->shownPath(), book("Inbox/Notebook.txt"));
        QTRY_VERIFY(window()->listModel().indexForPath(book("Inbox/Notebook.txt")).isValid());
    }

    void aDocumentDraggedOntoABookMovesThere()
    {
        openBook(book("Inbox"), book("Inbox/Other.txt"));
        QTreeView *outline = window()->outlinePane()->view();
        const QModelIndex archive =
            window()
                ->outlinePane()
                ->view()
                ->model()
                ->match(outline->model()->index(1, 0), tl::browser::OutlineModel::PathRole,
                        book("Archive"), 1, Qt::MatchExactly | Qt::MatchRecursive)
                .value(0);
        QVERIFY(archive.isValid());
        outline->scrollTo(archive);

        // The drag as the list starts it, dropped on the book's row.
        const QModelIndex row = window()->listModel().indexForPath(book("Inbox/Other.txt"));
        std::unique_ptr<QMimeData> data(window()->listModel().mimeData({row}));
        QVERIFY(data && data->hasUrls());
        const QPoint at = outline->visualRect(archive).center();
        QWidget *target = outline->viewport();
        QDragEnterEvent enter(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QDragMoveEvent move(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &move);
        QVERIFY(move.isAccepted());
        QDropEvent drop(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);

        QTRY_VERIFY(QFileInfo::exists(book("Archive/Other.txt")));
        QVERIFY(!QFileInfo::exists(book("Inbox/Other.txt")));
        QTRY_VERIFY(!window()->listModel().indexForPath(book("Inbox/Other.txt")).isValid());
    }
};

} // namespace

QObject *apptest::makeMainWindowTest()
{
    return new MainWindowTest;
}

#include "main_window_test.moc"
