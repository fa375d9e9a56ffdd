// Following a rename costs what the linkers cost, never what the library
// holds: renaming a document with 100 backlinks in a library of 100,000
// documents against the same in one of 10,000; and a book move against the
// move of a book ten times smaller. Reported as ratios. A book that 1,000
// documents link into is moved against the floor of writing those 1,000
// documents once and making them durable with one sync.
#include "foundation/path_string.h"
#include "isolated_home.h"
#include "library_generator.h"
#include "links/backlink_upkeep.h"
#include "links/rename_propagation.h"
#include "platform/settings.h"
#include "ratio_reporter.h"
#include "store/library_root.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int kBookSize = 1000;
constexpr int kLinkers = 100;

QString scratch()
{
    static QTemporaryDir dir;
    return dir.path();
}

// A library of `documents` documents in books of 1,000, with one target
// document linked to from 100 documents spread over the books.
QString library(int documents)
{
    const QString root = scratch() + QStringLiteral("/Library %1").arg(documents);
    const int books = documents / kBookSize;
    for (int b = 0; b < books; ++b)
        bench::makeBook(root + QStringLiteral("/Book %1").arg(b), kBookSize, {});
    bench::writeBytes(root + "/Target.md", "# Target\n");
    tl::store::setLibraryRootOverride(root);
    for (int l = 0; l < kLinkers; ++l) {
        const QString linker =
            root + QStringLiteral("/Book %1/Document %2.md").arg(l % books).arg(l / books);
        bench::writeBytes(linker, "# A linker\n\nSee [the target](/Target.md) and "
                                  "[[../Target.md]].\n");
        tl::links::tl_refreshBacklinksForReferencedDocuments(linker);
    }
    return root;
}

// One rename and its way back, each followed by the rewrite of its links.
void renameBackAndForth(benchmark::State &state, const QString &root)
{
    tl::store::setLibraryRootOverride(root);
    const QString a = root + "/Target.md", b = root + "/Renamed.md";
    for (auto _ : state) {
        for (const auto &[from, to] : {std::pair{a, b}, std::pair{b, a}}) {
            QFile::rename(from, to);
            QFile::rename(from + ".plist", to + ".plist");
            tl::links::adjustLinksAndBacklinksNow(from, to);
        }
    }
}

void BM_RenameIn10000(benchmark::State &state)
{
    static const QString root = library(10000);
    renameBackAndForth(state, root);
}

void BM_RenameIn100000(benchmark::State &state)
{
    static const QString root = library(100000);
    renameBackAndForth(state, root);
}

// A book of `documents` documents, each linking to its neighbour, moved back
// and forth.
void moveBook(benchmark::State &state, int documents)
{
    const QString root = scratch() + QStringLiteral("/Books %1").arg(documents);
    const QString a = root + "/Book", b = root + "/Moved";
    bench::makeBook(a, documents, {});
    tl::store::setLibraryRootOverride(root);
    for (int d = 0; d < documents; ++d) {
        const QString document = a + QStringLiteral("/Document %1.md").arg(d);
        bench::writeBytes(document, QStringLiteral("[next](Document %1.md) [abs](/Book/Document "
                                                   "%1.md)\n")
                                        .arg((d + 1) % documents)
                                        .toUtf8());
        tl::links::tl_refreshBacklinksForReferencedDocuments(document);
    }
    for (auto _ : state) {
        QDir().rename(a, b);
        tl::links::renameAllLinksNow(a, b);
        QDir().rename(b, a);
        tl::links::renameAllLinksNow(b, a);
    }
}

void BM_MoveBookOf100(benchmark::State &state)
{
    moveBook(state, 100);
}
void BM_MoveBookOf1000(benchmark::State &state)
{
    moveBook(state, 1000);
}

constexpr int kLinkersIntoBook = 1000;

// A book of 10 documents that 1,000 documents in ten other books link into,
// made once.
QString makeLinkedBook()
{
    const QString root = scratch() + QStringLiteral("/Linked book");
    bench::makeBook(root + "/Book", 10, {});
    tl::store::setLibraryRootOverride(root);
    for (int l = 0; l < kLinkersIntoBook; ++l) {
        const QString linker = root + QStringLiteral("/Linkers %1/Linker %2.md").arg(l % 10).arg(l);
        QDir().mkpath(tl::path::deletingLastComponent(linker));
        bench::writeBytes(linker,
                          QStringLiteral("# A linker\n\nSee [the document](../Book/Document "
                                         "%1.md) and [[/Book/Document %1.md]].\n")
                              .arg(l % 10)
                              .toUtf8());
        tl::links::tl_refreshBacklinksForReferencedDocuments(linker);
    }
    return root;
}

const QString &linkedBook()
{
    static const QString root = makeLinkedBook();
    return root;
}

// Each run one move, back and forth in turn: 1,000 documents rewritten.
void BM_MoveBookLinkedFrom1000(benchmark::State &state)
{
    const QString &root = linkedBook();
    tl::store::setLibraryRootOverride(root);
    QString a = root + "/Book", b = root + "/Moved";
    for (auto _ : state) {
        QDir().rename(a, b);
        tl::links::renameAllLinksNow(a, b);
        std::swap(a, b);
    }
}

// The floor: the same 1,000 documents written once in place, one sync.
void BM_WriteLinkersWithOneSync(benchmark::State &state)
{
    const QString &root = linkedBook();
    QHash<QString, QByteArray> texts;
    for (int l = 0; l < kLinkersIntoBook; ++l) {
        const QString linker = root + QStringLiteral("/Linkers %1/Linker %2.md").arg(l % 10).arg(l);
        QFile file(linker);
        file.open(QIODevice::ReadOnly);
        texts.insert(linker, file.readAll());
    }
    for (auto _ : state) {
        for (auto it = texts.cbegin(); it != texts.cend(); ++it)
            bench::writeBytes(it.key(), it.value());
        const int folder = ::open(QFile::encodeName(root).constData(), O_RDONLY | O_DIRECTORY);
        ::syncfs(folder);
        ::close(folder);
    }
}

BENCHMARK(BM_RenameIn10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RenameIn100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveBookOf100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveBookOf1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteLinkersWithOneSync)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveBookLinkedFrom1000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    const IsolatedHome home;
    QCoreApplication app(argc, argv);
    tl::platform::settings().set("manageLinks", true);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    reporter.printRatio("BM_RenameIn100000", "BM_RenameIn10000",
                        "rename with 100 backlinks in 100,000 documents", "in 10,000", 1.5);
    reporter.printRatio("BM_MoveBookOf1000", "BM_MoveBookOf100", "move of a book of 1,000",
                        "of 100", 15);
    reporter.printRatio("BM_MoveBookLinkedFrom1000", "BM_WriteLinkersWithOneSync",
                        "move of a book 1,000 documents link into",
                        "writing those documents once with one sync", 2);
    reporter.printLimit("BM_MoveBookLinkedFrom1000", "move of a book 1,000 documents link into",
                        500);
}
