// Publishing against pandoc doing the same job on the same files in the same
// run: 500 notes of 5 KB compiled into one HTML document, and 100 chapters
// made into an EPUB 2 e-book.
#include "isolated_home.h"
#include "publish/document_compiler.h"
#include "ratio_reporter.h"
#include "store/library_root.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>

namespace {

// A note of about `bytes` of Markdown: headings, paragraphs with emphasis
// and links, a list and a quotation.
QByteArray note(int number, qsizetype bytes)
{
    QString text = QStringLiteral("# Note %1\n\n").arg(number);
    for (int part = 1; text.size() < bytes; ++part)
        text += QStringLiteral("## Part %1\n\nA paragraph of note %2 with *emphasis*, **strong "
                               "words** and a [link](https://example.com/%2/%1) in the middle "
                               "of a sentence that runs on for a while.\n\n"
                               "- first point of part %1\n- second point\n\n"
                               "> A quotation over\n> two lines.\n\n")
                    .arg(part)
                    .arg(number);
    return text.toUtf8();
}

// A library with one book of `count` notes; the notes in reading order.
struct Library
{
    QTemporaryDir folder;
    QString book;
    QStringList notes;

    Library(int count, qsizetype bytes)
    {
        book = folder.path() + QStringLiteral("/Book");
        QDir().mkpath(book);
        for (int n = 0; n < count; ++n) {
            const QString path = book + QStringLiteral("/Note %1.md").arg(n, 4, 10, QChar(u'0'));
            QFile file(path);
            if (file.open(QIODevice::WriteOnly))
                file.write(note(n, bytes));
            notes << path;
        }
        tl::store::setLibraryRootOverride(folder.path());
    }
};

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Library &notesLibrary()
{
    static Library library(500, 5 * 1024);
    return library;
}

Library &chaptersLibrary()
{
    static Library library(100, 5 * 1024);
    return library;
}

void BM_CompileHTML(benchmark::State &state)
{
    Library &library = notesLibrary();
    for (auto _ : state) {
        tl::publish::TLKSDocumentCompiler compiler;
        compiler.basePath = library.folder.path();
        const QString result =
            compiler.tl_createHTMLFromDocuments({library.book}, "Compiled", QString(), false);
        state.PauseTiming();
        QFile::remove(result);
        QFile::remove(result + QStringLiteral(".plist"));
        state.ResumeTiming();
    }
}
BENCHMARK(BM_CompileHTML)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_EPub(benchmark::State &state)
{
    Library &library = chaptersLibrary();
    for (auto _ : state) {
        tl::publish::TLKSDocumentCompiler compiler;
        compiler.basePath = library.folder.path();
        tl::publish::EBookAttributes attributes;
        attributes.title = QStringLiteral("Book");
        const std::optional<QString> book =
            compiler.tl_makeePubWithAttributes(attributes, {library.book});
        state.PauseTiming();
        if (book) {
            QFile::remove(*book);
            QFile::remove(*book + QStringLiteral(".plist"));
        }
        state.ResumeTiming();
    }
}
BENCHMARK(BM_EPub)->Unit(benchmark::kMillisecond)->Iterations(3);

// pandoc with the same files, timed around its process.
void runPandoc(benchmark::State &state, const Library &library, const QStringList &options)
{
    const QString pandoc = QStandardPaths::findExecutable(QStringLiteral("pandoc"));
    if (pandoc.isEmpty()) {
        state.SkipWithError("pandoc not found (Debian: pandoc)");
        return;
    }
    for (auto _ : state) {
        QProcess peer;
        const auto start = std::chrono::steady_clock::now();
        peer.start(pandoc, options + library.notes);
        if (!peer.waitForFinished(300000) || peer.exitCode() != 0) {
            state.SkipWithError(peer.readAllStandardError().constData());
            return;
        }
        state.SetIterationTime(secondsSince(start));
    }
}

void BM_PandocHTML(benchmark::State &state)
{
    const Library &library = notesLibrary();
    runPandoc(state, library,
              {"-s", "-f", "markdown", "-t", "html", "--metadata", "title=Compiled", "-o",
               library.folder.filePath("pandoc.html")});
}
BENCHMARK(BM_PandocHTML)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

void BM_PandocEPub(benchmark::State &state)
{
    const Library &library = chaptersLibrary();
    runPandoc(state, library,
              {"-f", "markdown", "-t", "epub2", "--metadata", "title=Book", "-o",
               library.folder.filePath("pandoc.epub")});
}
BENCHMARK(BM_PandocEPub)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

} // namespace

int main(int argc, char **argv)
{
    const IsolatedHome home;
    return runBenchmarksWithRatios(
        argc, argv,
        {{"BM_CompileHTML/iterations:3", "BM_PandocHTML/iterations:1/manual_time",
          "compile to HTML", "pandoc to HTML", 0.33},
         {"BM_EPub/iterations:3", "BM_PandocEPub/iterations:1/manual_time", "e-book",
          "pandoc to EPUB 2", 0.33}},
        {{"BM_CompileHTML/iterations:3", "500 notes of 5 KB to one HTML document", 3000},
         {"BM_EPub/iterations:3", "an e-book of 100 chapters", 5000}});
}
