// The window while 2,500 Evernote notes come into the book it shows: the
// import runs on its worker as File > Import runs it, and the notes reach the
// document list from the import and from the file watcher. Reported: the
// main thread's own work from the start of the import until every note is
// listed and the events have settled, and its longest stall (the longest
// time the window could not repaint). The floor, measured in the same run,
// is listing the finished book once.
// Run under a display (xvfb-run) or with QT_QPA_PLATFORM=offscreen.
#include "browser/document_list.h"
#include "browser/document_list_model.h"
#include "browser/event_bridge.h"
#include "desktop_setup.h"
#include "importing/import_runner.h"
#include "main_window.h"
#include "outline_pane.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

// A smaller count may be given as the first argument, to profile.
int kNotes = 2500;
constexpr int kNotesAlreadyThere = 200;

void writeExport(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<en-export export-date=\"20240101T120000Z\" application=\"Evernote\">\n");
    for (int n = 0; n < kNotes; ++n) {
        const QByteArray number = QByteArray::number(n);
        file.write("<note><title>Imported " + number +
                   "</title>\n<content><![CDATA[<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
                   "<en-note><div>Text of note " +
                   number +
                   "</div></en-note>]]></content>\n<created>20230102T030405Z</created>"
                   "<updated>20230203T040506Z</updated><tag>@project" +
                   QByteArray::number(n % 20) + "</tag></note>\n");
    }
    file.write("</en-export>\n");
}

double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1)
        kNotes = std::max(1, std::atoi(argv[1]));
    const QString sandbox = makeSandbox("tavelle-burst-bench");
    const QString root = sandbox + "/Library";
    const QString book = root + "/Notes";
    QDir().mkpath(book);
    for (int n = 0; n < kNotesAlreadyThere; ++n) {
        QFile note(book + QStringLiteral("/Kept %1.md").arg(n));
        if (note.open(QIODevice::WriteOnly))
            note.write("# Kept\n\nA note that was there before.\n");
    }
    const QString exportPath = sandbox + "/Notes.enex";
    writeExport(exportPath);

    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    assembleHeadlessDesktop(root);

    tl::browser::EventBridge bridge;
    tl::app::MainWindow window(bridge);
    showBook(window, book, kNotesAlreadyThere);
    tl::browser::DocumentListModel &list = window.listModel();

    // The longest time between two ticks of a timer meant to fire each 16 ms.
    QElapsedTimer sinceTick;
    qint64 longestStallMs = 0;
    QTimer ticker;
    ticker.setInterval(16);
    QObject::connect(&ticker, &QTimer::timeout,
                     [&] { longestStallMs = std::max(longestStallMs, sinceTick.restart()); });

    tl::app::ImportRunner runner(&window);
    bool imported = false;
    QObject::connect(&runner, &tl::app::ImportRunner::finished, [&] { imported = true; });
    // Each change of the list's rows, to tell when the events have settled.
    QElapsedTimer sinceChange;
    sinceChange.start();
    const auto changed = [&] { sinceChange.restart(); };
    QObject::connect(&list, &QAbstractItemModel::rowsInserted, changed);
    QObject::connect(&list, &QAbstractItemModel::rowsRemoved, changed);
    QObject::connect(&list, &QAbstractItemModel::rowsMoved, changed);
    QObject::connect(&list, &QAbstractItemModel::dataChanged, changed);
    QObject::connect(&list, &QAbstractItemModel::layoutChanged, changed);

    const double cpuBefore = threadSeconds();
    QElapsedTimer wall;
    wall.start();
    sinceTick.start();
    ticker.start();
    runner.importFiles({exportPath}, book);
    const int wanted = kNotesAlreadyThere + kNotes;
    // Settled: the import is done, every note listed (below the section's
    // header) and the list unchanged for a second.
    while (!imported || list.rowCount() < wanted + 1 || sinceChange.elapsed() < 1000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    ticker.stop();
    const double windowSeconds = threadSeconds() - cpuBefore;
    const double wallSeconds = double(wall.elapsed()) / 1000 - double(sinceChange.elapsed()) / 1000;

    tl::browser::TLKSDocumentListViewController fresh;
    fresh.path = book;
    QElapsedTimer listing;
    listing.start();
    fresh.getDocumentsInFolder();
    const double floorSeconds = double(listing.nsecsElapsed()) / 1e9;

    std::printf("import of %d notes into the shown book of %d: the window's own work %.2f s "
                "(CPU of the main thread), done after %.1f s; longest stall %lld ms\n",
                kNotes, kNotesAlreadyThere, windowSeconds, wallSeconds,
                static_cast<long long>(longestStallMs));
    std::printf("  floor, listing the finished book of %lld documents once: %.3f s; ratio %.0fx\n",
                static_cast<long long>(fresh.documentsList.size()), floorSeconds,
                floorSeconds > 0 ? windowSeconds / floorSeconds : 0.0);
    QDir(sandbox).removeRecursively();
    return 0;
}
