// tavelle-pdf PAGE.html OUT.pdf A4|Letter: prints a page as a PDF with the
// web engine, off-screen, and ends. The publishing core starts it, so the
// command never loads a web engine itself. The page's scripts do not run:
// documents are printed as they read.
#include <QGuiApplication>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QTimer>
#include <QUrl>
#include <QWebEnginePage>
#include <QWebEngineSettings>
#include <cstdio>
#include <unistd.h>

int main(int argc, char **argv)
{
    // The engine's sandbox cannot run for the superuser (containers, CI);
    // the page runs no scripts there either way.
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    QGuiApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fprintf(stderr, "Usage: tavelle-pdf PAGE.html OUT.pdf A4|Letter\n");
        return 2;
    }
    const QString output = arguments.at(2);
    const QPageSize paper(arguments.at(3) == u"Letter" ? QPageSize::Letter : QPageSize::A4);
    const QPageLayout layout(paper, QPageLayout::Portrait, QMarginsF(15, 15, 15, 15),
                             QPageLayout::Millimeter);

    QWebEnginePage page;
    page.settings()->setAttribute(QWebEngineSettings::JavascriptEnabled, false);
    QObject::connect(&page, &QWebEnginePage::loadFinished, &page, [&](bool ok) {
        if (!ok) {
            std::fprintf(stderr, "tavelle-pdf: cannot load %s\n", qPrintable(arguments.at(1)));
            QCoreApplication::exit(1);
            return;
        }
        page.printToPdf(output, layout);
    });
    QObject::connect(&page, &QWebEnginePage::pdfPrintingFinished, &page,
                     [](const QString &, bool ok) { QCoreApplication::exit(ok ? 0 : 1); });
    page.load(QUrl::fromLocalFile(arguments.at(1)));
    return app.exec();
}
