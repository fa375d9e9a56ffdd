// The document view's work on the main thread, against floors measured in
// the same run: showing a 20 KB Markdown document against converting its
// text alone; saving a 1 MB text against writing its bytes; a keystroke in a
// 1 MB text; one changed row of a 10,000-row list model against listing the
// book anew.
#include "browser/document_list.h"
#include "browser/document_list_model.h"
#include "browser/document_view_controller.h"
#include "convert/markdown_to_html.h"
#include "convert/store_registration.h"
#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "platform/file_ops.h"
#include "ratio_reporter.h"
#include "store/library_root.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

QString library()
{
    static QTemporaryDir dir;
    static const bool made = [] {
        QDir().mkpath(dir.path() + "/Book");
        tl::store::setLibraryRootOverride(dir.path());
        return true;
    }();
    (void)made;
    return dir.path();
}

QString markdownOf(int bytes)
{
    QString text = QStringLiteral("# A long document\n\n");
    for (int n = 0; text.size() < bytes; ++n)
        text += QStringLiteral("## Part %1\n\nSome *emphasis*, a [link](http://example.org), "
                               "`code` and a list:\n\n- one\n- two\n- [ ] a task\n\n")
                    .arg(n);
    return text;
}

QString fileWith(const QString &name, const QString &text)
{
    const QString path = library() + "/Book/" + name;
    QFile f(path);
    if (f.open(QIODevice::WriteOnly))
        f.write(text.toUtf8());
    return path;
}

void BM_ConvertFloor(benchmark::State &state)
{
    const QString path = fileWith("Twenty.md", markdownOf(20 * 1024));
    for (auto _ : state) {
        QFile f(path);
        f.open(QIODevice::ReadOnly);
        benchmark::DoNotOptimize(
            tl::convert::markdownToHTMLForDocument(QString::fromUtf8(f.readAll()), path));
    }
}

void BM_ShowMarkdown(benchmark::State &state)
{
    const QString path = fileWith("Twenty.md", markdownOf(20 * 1024));
    tl::browser::TLKSDocumentViewController view;
    view.path = path;
    for (auto _ : state) {
        view.showDocument();
        if (view.formattedPage.html.isEmpty())
            state.SkipWithError("nothing rendered");
    }
}

QString megabyte()
{
    static const QString text = [] {
        QString t;
        while (t.size() < 1024 * 1024)
            t += QStringLiteral("A line of plain text that goes on for a while, ending here.\n");
        return t;
    }();
    return text;
}

void BM_WriteFloor(benchmark::State &state)
{
    const QString path = library() + "/Book/Floor.txt";
    const QString text = megabyte();
    for (auto _ : state)
        tl::platform::writeFileInPlace(path, text.toUtf8());
}

void BM_SaveMegabyte(benchmark::State &state)
{
    const QString path = fileWith("Mega.txt", "Not the title\n" + megabyte());
    tl::browser::TLKSDocumentViewController view;
    view.path = path;
    view.showDocument();
    view.textShouldBeginEditing();
    int n = 0;
    for (auto _ : state) {
        view.textDidChange(view.plainText + QString::number(n++ % 10), true);
        view.writeTextToFile();
    }
}

void BM_KeystrokeMegabyte(benchmark::State &state)
{
    const QString path = fileWith("Keys.txt", "Not the title\n" + megabyte());
    tl::browser::TLKSDocumentViewController view;
    view.path = path;
    view.showDocument();
    view.textShouldBeginEditing();
    QString text = view.plainText;
    for (auto _ : state) {
        text.append(u'x');
        view.textDidChange(text, true);
    }
    tl::Scheduler::main().cancel(view.saveTimerKey());
}

QString bigBook()
{
    static const QString book = [] {
        const QString path = library() + "/Big";
        QDir().mkpath(path);
        for (int d = 0; d < 10000; ++d)
            fileWith(QStringLiteral("../Big/Document %1.md").arg(d), "# A document\n");
        return path;
    }();
    return book;
}

void BM_ListRebuildFloor(benchmark::State &state)
{
    tl::browser::TLKSDocumentListViewController list;
    list.path = bigBook();
    for (auto _ : state)
        list.getDocumentsInFolder();
}

void BM_ListModelOneRow(benchmark::State &state)
{
    tl::browser::TLKSDocumentListViewController list;
    list.path = bigBook();
    tl::browser::DocumentListModel model(list);
    list.getDocumentsInFolder();
    const QString changed = bigBook() + "/Document 5000.md";
    int n = 0;
    for (auto _ : state) {
        fileWith("../Big/Document 5000.md", QStringLiteral("# Changed %1\n").arg(n++));
        list.documentModifiedOnDisk(changed);
    }
    if (model.rowCount() != 10001)
        state.SkipWithError("rows lost");
}

BENCHMARK(BM_ConvertFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ShowMarkdown)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveMegabyte)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeystrokeMegabyte)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ListRebuildFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ListModelOneRow)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    tl::convert::registerConversionsWithStore();
    return runBenchmarksWithRatios(
        argc, argv,
        {{"BM_ShowMarkdown", "BM_ConvertFloor", "showing a 20 KB Markdown document",
          "converting its text", 1.5},
         {"BM_SaveMegabyte", "BM_WriteFloor", "saving a 1 MB text", "writing its bytes", 3.0},
         {"BM_ListModelOneRow", "BM_ListRebuildFloor", "one changed row of a 10,000-row list model",
          "listing the book anew", 0.2}});
}
