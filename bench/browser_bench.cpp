// The document list and the outline against their floor: a plain walk of
// the same folders that stats every entry and reads each properties file
// once. Reported as ratios.
#include "browser/document_list.h"
#include "browser/outline_item.h"
#include "library_generator.h"
#include "ratio_reporter.h"
#include "store/library_root.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int kDocuments = 10000;
constexpr int kTopBooks = 50;
constexpr int kSubBooks = 100;

QString scratch()
{
    static QTemporaryDir dir;
    return dir.path();
}

// One book of 10,000 documents, each with a properties file, and an order list.
QString bigBook()
{
    static const QString book = [] {
        const QString path = scratch() + "/List/Big Book";
        bench::makeBook(path, kDocuments, {{"Tags", QVariantList{"work"}}});
        return path;
    }();
    return book;
}

// A library of 5,000 books in two levels, each with its properties file.
QString manyBooks()
{
    static const QString root = [] {
        const QString path = scratch() + "/Outline";
        for (int t = 0; t < kTopBooks; ++t)
            for (int s = 0; s < kSubBooks; ++s) {
                const QString book = path + QStringLiteral("/Top %1/Book %2").arg(t).arg(s);
                QDir().mkpath(book);
                bench::writeBytes(book + "/BookProperties.plist",
                                  tl::plist::toXml(QVariantMap{{"sortOrderForNotes", "title"}}));
            }
        return path;
    }();
    return root;
}

void plainWalk(benchmark::State &state, const QString &root)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(bench::plainWalk(root));
}

void BM_ListFloor(benchmark::State &state)
{
    plainWalk(state, bigBook());
}

void BM_DocumentList(benchmark::State &state)
{
    tl::store::setLibraryRootOverride(scratch() + "/List");
    tl::browser::TLKSDocumentListViewController list;
    list.path = bigBook();
    for (auto _ : state) {
        list.loadDisplayParameters();
        list.getDocumentsInFolder();
        if (list.documentsList.size() != kDocuments)
            state.SkipWithError("list lost documents");
    }
}

void BM_OutlineFloor(benchmark::State &state)
{
    plainWalk(state, manyBooks());
}

int countTree(tl::browser::TLKSOutlineItem *item)
{
    int n = 1;
    for (const auto &child : item->children())
        n += countTree(child.get());
    return n;
}

void BM_Outline(benchmark::State &state)
{
    tl::store::setLibraryRootOverride(manyBooks());
    for (auto _ : state) {
        tl::browser::TLKSOutlineItem::rootItem().resetAllChildren();
        const int books = countTree(tl::browser::TLKSOutlineItem::booksItem()) - 1;
        if (books != kTopBooks * kSubBooks + kTopBooks)
            state.SkipWithError("outline lost books");
    }
}

BENCHMARK(BM_ListFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DocumentList)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OutlineFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Outline)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    return runBenchmarksWithRatios(
        argc, argv,
        {{"BM_DocumentList", "BM_ListFloor", "document list of 10,000 documents", "plain walk",
          1.5},
         {"BM_Outline", "BM_OutlineFloor", "outline of 5,000 books", "plain walk", 1.5}});
}
