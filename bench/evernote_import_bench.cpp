// An Evernote export of 1,000 notes with 200 MB of resources imported into a
// book: the time against a floor that reads the export in the same pieces and
// writes the same resource files, and the peak memory of the import against
// that of an export ten times smaller, which must stay the same.
#include "importers/evernote_importer.h"
#include "isolated_home.h"
#include "platform/file_ops.h"
#include "store/library_root.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cstdio>

namespace {

// A smaller count may be given as the first argument, to profile.
int kNotes = 1000;
constexpr int kResourceBytes = 200 * 1000;
constexpr qint64 kPiece = 256 * 1024;
constexpr double kTargetSeconds = 10;

// Written note by note, so making it costs no memory either.
void writeExport(const QString &path, int notes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!DOCTYPE en-export SYSTEM \"http://xml.evernote.com/pub/evernote-export3.dtd\">\n"
               "<en-export export-date=\"20240101T120000Z\" application=\"Evernote\">\n");
    QByteArray resource(kResourceBytes, Qt::Uninitialized);
    for (int n = 0; n < notes; ++n) {
        QRandomGenerator(n).fillRange(reinterpret_cast<quint32 *>(resource.data()),
                                      kResourceBytes / 4);
        const QByteArray hash = QCryptographicHash::hash(resource, QCryptographicHash::Md5).toHex();
        const QByteArray encoded = resource.toBase64();
        QByteArray base64;
        for (qsizetype at = 0; at < encoded.size(); at += 76)
            base64 += encoded.mid(at, 76) + '\n';
        const QByteArray number = QByteArray::number(n);
        // Every tenth title repeats an earlier one; half the resources are unnamed.
        file.write("<note><title>Note " + QByteArray::number(n % 10 == 9 ? n - 1 : n) +
                   "</title>\n<content><![CDATA[<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
                   "<en-note><div>Text of note " +
                   number +
                   "</div><div><en-todo checked=\"true\"/>Done</div><div><en-todo/>Open"
                   "</div><en-media hash=\"" +
                   hash +
                   "\" type=\"image/png\"/></en-note>]]></content>\n"
                   "<created>20230102T030405Z</created><updated>2023-02-03T04:05:06Z"
                   "</updated>\n<tag>@project" +
                   QByteArray::number(n % 20) + "</tag><tag>@area" + QByteArray::number(n % 5) +
                   "</tag>\n<note-attributes><author>Someone</author><source>web.clip</source>"
                   "<source-url>https://example.org/" +
                   number +
                   "</source-url><latitude>48.85</latitude></note-attributes>\n"
                   "<resource><data encoding=\"base64\">\n" +
                   base64 + "\n</data><mime>image/png</mime><resource-attributes>" +
                   (n % 2 ? "<file-name>picture " + number + ".png</file-name>" : QByteArray()) +
                   "</resource-attributes></resource></note>\n");
    }
    file.write("</en-export>\n");
}

// The peak resident size since the last reset, in megabytes.
double peakMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024;
    return 0;
}

void resetPeak()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}

struct Run
{
    double seconds = 0;
    double peak = 0;
    int notes = 0;
};

Run importInto(const QString &exportPath, const QString &book)
{
    QDir().mkpath(book);
    resetPeak();
    QElapsedTimer timer;
    timer.start();
    tl::importers::TLKSEvernoteImporter importer(exportPath, book);
    importer.start();
    return {timer.elapsed() / 1000.0, peakMegabytes(), importer.noteCount()};
}

// Reading the export in the importer's pieces and writing a file of each
// resource's size: what any import of it has to do.
double floorSeconds(const QString &exportPath, const QString &folder)
{
    QDir().mkpath(folder);
    QElapsedTimer timer;
    timer.start();
    QFile file(exportPath);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray resource(kResourceBytes, 'x');
    qint64 read = 0;
    int written = 0;
    while (!file.atEnd()) {
        read += file.read(kPiece).size();
        for (; written < kNotes && read > qint64(written + 1) * kResourceBytes * 4 / 3; ++written) {
            tl::platform::writeCopyAtomically(folder + QStringLiteral("/%1.png").arg(written),
                                              resource);
        }
    }
    return timer.elapsed() / 1000.0;
}

} // namespace

int main(int argc, char **argv)
{
    const IsolatedHome home;
    QCoreApplication app(argc, argv);
    if (argc > 1)
        kNotes = std::max(10, QByteArray(argv[1]).toInt());
    QTemporaryDir library;
    tl::store::setLibraryRootOverride(library.path());
    const QString small = library.path() + QStringLiteral("/small.enex");
    const QString large = library.path() + QStringLiteral("/large.enex");
    writeExport(small, kNotes / 10);
    writeExport(large, kNotes);

    const Run first = importInto(small, library.path() + QStringLiteral("/Small"));
    const Run full = importInto(large, library.path() + QStringLiteral("/Notes"));
    const double floor = floorSeconds(large, library.path() + QStringLiteral("/Floor"));
    std::printf("Evernote import of %d notes, %d MB of resources (%lld MB export): %.2f s "
                "(target: under %.0f s)\n",
                full.notes, kNotes * kResourceBytes / 1000000, QFile(large).size() / 1000000,
                full.seconds, kTargetSeconds);
    if (floor > 0)
        std::printf("import / reading the export and writing its resources: %.2fx\n",
                    full.seconds / floor);
    std::printf("peak resident memory: %.1f MB for %d notes, %.1f MB for %d notes "
                "(target: no growth with the export)\n",
                first.peak, first.notes, full.peak, full.notes);
    return full.notes == kNotes && full.seconds < kTargetSeconds ? 0 : 1;
}
