// The plain-text view on a 1 MB Markdown document: showing it coloured, a
// typed character and a Return in a list in its middle, each against a bare
// text widget doing the same in the same run.
// Run under a display (xvfb-run) or with QT_QPA_PLATFORM=offscreen.
#include "document/plain_text_view.h"
#include "platform/settings.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QTest>
#include <cstdio>

namespace {

QString document()
{
    QString t;
    for (int n = 1; t.size() < 1'000'000; ++n)
        t += QStringLiteral("## Meeting %1\n\nNotes with *emphasis*, **decisions** and a "
                            "[[Project %1|project]] link.\nA second line with `code`.\n\n1. "
                            "first point\n2. second point\n\n- [ ] follow up %1\n\n")
                 .arg(n);
    return t;
}

template <typename Work> double milliseconds(Work work, int rounds = 1)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < rounds; ++i)
        work();
    return double(timer.nsecsElapsed()) / 1e6 / rounds;
}

void placeCaret(QPlainTextEdit &view, const QString &before)
{
    QTextCursor cursor = view.textCursor();
    cursor.setPosition(
        int(view.toPlainText().indexOf(before, view.toPlainText().size() / 2) + before.size()));
    view.setTextCursor(cursor);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    for (const char *key : {"AutoIndentLists", "insertClosingCharacters", "HighlightMarkdown"})
        tl::platform::settings().set(QString::fromLatin1(key), true);
    const QString text = document();

    QPlainTextEdit bare;
    bare.resize(800, 600);
    bare.show();
    tl::app::PlainTextView view;
    view.resize(800, 600);
    view.setDocumentPath(QStringLiteral("/tmp/Bench.md"));
    view.show();
    QCoreApplication::processEvents();

    const double bareLoad = milliseconds([&] {
        bare.setPlainText(text);
        QCoreApplication::processEvents();
    });
    const double viewLoad = milliseconds([&] {
        view.showText(text, 0);
        QCoreApplication::processEvents();
    });
    placeCaret(bare, QStringLiteral("first"));
    placeCaret(view, QStringLiteral("first"));
    const double bareKey = milliseconds([&] { QTest::keyClick(&bare, Qt::Key_X); }, 50);
    const double viewKey = milliseconds([&] { QTest::keyClick(&view, Qt::Key_X); }, 50);
    placeCaret(bare, QStringLiteral("second point"));
    placeCaret(view, QStringLiteral("second point"));
    const double bareReturn = milliseconds([&] { QTest::keyClick(&bare, Qt::Key_Return); }, 20);
    const double viewReturn = milliseconds([&] { QTest::keyClick(&view, Qt::Key_Return); }, 20);

    std::printf("showing 1 MB coloured: %.1f ms, a bare text widget: %.1f ms (%.1fx)\n", viewLoad,
                bareLoad, viewLoad / bareLoad);
    std::printf("a typed character: %.2f ms, bare: %.2f ms (%.1fx)\n", viewKey, bareKey,
                viewKey / bareKey);
    std::printf("Return in a list: %.2f ms, bare: %.2f ms (%.1fx)\n", viewReturn, bareReturn,
                viewReturn / bareReturn);
    return 0;
}
