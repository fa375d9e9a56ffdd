// The plain-text view applies the editing rules to keys as one undo step
// each, and colours Markdown without touching the undo history.
#include "app_tests.h"
#include "document/completion_popup.h"
#include "document/hanging_indent_layout.h"
#include "document/plain_text_view.h"
#include "platform/settings.h"
#include "store/library_root.h"
#include "support/test_environment.h"

#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

namespace {

using tl::app::PlainTextView;

class PlainTextViewTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        tl::platform::Settings &settings = tl::platform::settings();
        for (const char *key : {"AutoIndentLists", "insertClosingCharacters", "HighlightMarkdown"})
            settings.set(QString::fromLatin1(key), true);
        settings.set(QStringLiteral("IndentWithTabs"), false);
    }

    void returnContinuesAListAndUndoRestoresIt()
    {
        PlainTextView view;
        view.setDocumentPath(QStringLiteral("/tmp/List.md"));
        view.showText(QString(), 0);
        view.show();
        QTest::keyClicks(&view, QStringLiteral("- milk"));
        QTest::keyClick(&view, Qt::Key_Return);
        QCOMPARE(view.toPlainText(), QStringLiteral("- milk\n- "));
        view.undo();
        QCOMPARE(view.toPlainText(), QStringLiteral("- milk"));
        view.redo();
        QCOMPARE(view.toPlainText(), QStringLiteral("- milk\n- "));
        QTest::keyClicks(&view, QStringLiteral("eggs"));
        QTest::keyClick(&view, Qt::Key_Return);
        QTest::keyClick(&view, Qt::Key_Return);
        QCOMPARE(view.toPlainText(), QStringLiteral("- milk\n- eggs\n\n"));
        for (const char *before :
             {"- milk\n- eggs\n- ", "- milk\n- eggs", "- milk\n- ", "- milk"}) {
            view.undo();
            QCOMPARE(view.toPlainText(), QString::fromLatin1(before));
        }
    }

    void pairsAndNumbersFollowTheKeys()
    {
        PlainTextView view;
        view.setDocumentPath(QStringLiteral("/tmp/Notes.md"));
        view.showText(QStringLiteral("1. a\n2. b"), 4);
        QTest::keyClick(&view, Qt::Key_Return);
        QCOMPARE(view.toPlainText(), QStringLiteral("1. a\n2. \n3. b"));
        QTest::keyClicks(&view, QStringLiteral("f("));
        QCOMPARE(view.toPlainText(), QStringLiteral("1. a\n2. f()\n3. b"));
        QTest::keyClick(&view, Qt::Key_Backspace);
        QCOMPARE(view.toPlainText(), QStringLiteral("1. a\n2. f\n3. b"));
        QTest::keyClick(&view, Qt::Key_1, Qt::ControlModifier);
        QCOMPARE(view.toPlainText(), QStringLiteral("1. a\n# 2. f\n3. b"));
    }

    void headingsHangWithoutEnteringTheUndoHistory()
    {
        PlainTextView view;
        view.setDocumentPath(QStringLiteral("/tmp/Head.md"));
        view.showText(QStringLiteral("## Heading\n- item *slanted*\nplain"), 0);
        QVERIFY(!view.document()->isUndoAvailable());
        const QTextBlock heading = view.document()->firstBlock();
        const auto *indents = static_cast<const tl::app::ParagraphIndents *>(heading.userData());
        QVERIFY(indents);
        QVERIFY(indents->firstLine < indents->head);
        QVERIFY(!heading.layout()->formats().isEmpty());
        QVERIFY(!heading.next().layout()->formats().isEmpty());
        QTest::keyClicks(&view, QStringLiteral("x"));
        view.undo();
        QVERIFY(!view.document()->isUndoAvailable());
        QCOMPARE(view.toPlainText(), QStringLiteral("## Heading\n- item *slanted*\nplain"));
    }

    void tabCompletesALinkFromTheList()
    {
        const QString root =
            QDir(tltest::makeTemporaryFolder(QStringLiteral("Library"))).canonicalPath();
        for (const char *name : {"Book/Today.md", "Book/Plan 1.md", "Book/Plan 2.md"})
            QVERIFY(tltest::writeFile(root + u'/' + QString::fromLatin1(name), "text\n"));
        tl::store::setLibraryRootOverride(root);
        PlainTextView view;
        view.setDocumentPath(root + QStringLiteral("/Book/Today.md"));
        view.showText(QStringLiteral("See "), 4);
        view.show();
        QTest::keyClicks(&view, QStringLiteral("[[Pl"));
        QCOMPARE(view.toPlainText(), QStringLiteral("See [[Pl]]"));
        QTest::keyClick(&view, Qt::Key_Tab);
        auto *popup = view.findChild<tl::app::CompletionPopup *>();
        QVERIFY(popup && popup->isVisible());
        QCOMPARE(popup->count(), 2);
        QTest::keyClick(popup, Qt::Key_Down);
        QTest::keyClick(popup, Qt::Key_Return);
        QCOMPARE(view.toPlainText(), QStringLiteral("See [[Plan 2.md]]"));
        view.undo();
        QCOMPARE(view.toPlainText(), QStringLiteral("See [[Pl]]"));
        const QString folder = qEnvironmentVariable("TAVELLE_SCREENSHOTS");
        if (!folder.isEmpty()) {
            view.resize(480, 200);
            view.moveCursor(QTextCursor::End);
            QTest::keyClicks(&view, QStringLiteral(" and [[Pl"));
            QTest::keyClick(&view, Qt::Key_Tab);
            QTest::qWait(200);
            QGuiApplication::primaryScreen()
                ->grabWindow(0, 0, 0, 700, 500)
                .save(folder + QStringLiteral("/editor-completion.png"));
        }
        tl::store::setLibraryRootOverride(QString());
    }

    void screenshotsWhenAsked()
    {
        const QString folder = qEnvironmentVariable("TAVELLE_SCREENSHOTS");
        if (folder.isEmpty())
            QSKIP("TAVELLE_SCREENSHOTS names no folder");
        const QString text = QStringLiteral(
            "# Shopping\n\nThings to get on **Saturday**, in *this* order:\n\n1. Milk\n2. Eggs "
            "and a long item that wraps onto a second line to show the hanging indent of "
            "list items\n    1. Free range\n3. Bread\n\n- [ ] call the baker\n- [x] order "
            "flour @done\n\n> quoted line\n\nSee [[Recipes|my recipes]] and "
            "[the site](https://example.com).\n\n```\ncode *stays* plain\n```\n\nInline "
            "`code` and ==marked== text, ~~struck~~.\n");
        for (const bool dark : {false, true}) {
            PlainTextView view;
            QPalette palette = view.palette();
            palette.setColor(QPalette::Base, dark ? QColor(30, 30, 30) : Qt::white);
            palette.setColor(QPalette::Text, dark ? QColor(220, 220, 220) : QColor(30, 30, 30));
            view.setPalette(palette);
            view.resize(560, 640);
            view.setDocumentFont(QString(), 11, 1.3);
            view.setDocumentPath(QStringLiteral("/tmp/Shopping.md"));
            view.show();
            view.showText(text, 0);
            QVERIFY(QTest::qWaitForWindowExposed(&view));
            view.grab().save(folder + (dark ? u"/editor-dark.png"_qs : u"/editor-light.png"_qs));
        }
    }
};

} // namespace

QObject *apptest::makePlainTextViewTest()
{
    return new PlainTextViewTest;
}

#include "plain_text_view_test.moc"
