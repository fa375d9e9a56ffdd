// The reading-order walk against its floor: a plain walk that stats every
// entry and reads every properties file once. Reported as a ratio.
#include "foundation/plist.h"
#include "platform/settings.h"
#include "ratio_reporter.h"
#include "store/library_root.h"
#include "store/reading_order.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <sys/stat.h>

namespace {

constexpr int kBooks = 100;
constexpr int kDocumentsPerBook = 100;

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    if (f.open(QIODevice::WriteOnly))
        f.write(bytes);
}

// 10,000 documents in 100 books, each document with a properties file and
// each book with an order list.
QString library()
{
    static QTemporaryDir dir;
    static const bool made = [] {
        for (int b = 0; b < kBooks; ++b) {
            const QString book = dir.path() + QStringLiteral("/Book %1").arg(b);
            QDir().mkpath(book);
            QVariantList notes;
            for (int d = 0; d < kDocumentsPerBook; ++d) {
                const QString name = QStringLiteral("Document %1.md").arg(d);
                notes.prepend(name);
                writeBytes(book + u'/' + name, "# A document\n\nSome text.\n");
                writeBytes(
                    book + u'/' + name + QStringLiteral(".plist"),
                    tl::plist::toXml(QVariantMap{{"CreationDate", QDateTime::currentDateTimeUtc()},
                                                 {"Tags", QVariantList{"work"}},
                                                 {"cellColor", "blue"}}));
            }
            writeBytes(
                book + QStringLiteral("/BookProperties.plist"),
                tl::plist::toXml(QVariantMap{{"Notes", notes}, {"sortOrderForNotes", "custom"}}));
        }
        return true;
    }();
    (void)made;
    return dir.path();
}

void BM_PlainWalkFloor(benchmark::State &state)
{
    const QString root = library();
    for (auto _ : state) {
        qint64 bytes = 0;
        QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            struct stat st
            {
            };
            ::stat(QFile::encodeName(path).constData(), &st);
            if (path.endsWith(u".plist")) {
                QFile f(path);
                if (f.open(QIODevice::ReadOnly))
                    bytes += tl::plist::parse(f.readAll()) ? 1 : 0;
            }
        }
        benchmark::DoNotOptimize(bytes);
    }
}

void BM_ReadingOrderWalk(benchmark::State &state)
{
    const QString root = library();
    tl::store::setLibraryRootOverride(root);
    for (auto _ : state) {
        const QStringList all = tl::store::tl_sortedListOfAllItemsInHierarchy(root);
        if (all.size() != kBooks * kDocumentsPerBook)
            state.SkipWithError("walk lost documents");
        benchmark::DoNotOptimize(all);
    }
}

BENCHMARK(BM_PlainWalkFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadingOrderWalk)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    reporter.printRatio("BM_ReadingOrderWalk", "BM_PlainWalkFloor", "reading-order walk",
                        "plain walk", 1.5);
}
