#include "publish/pdf_printing.h"

#include "convert/envelope.h"
#include "convert/markdown_to_html.h"
#include "foundation/path_string.h"
#include "platform/folders.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/log.h"
#include "store/safe_names.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QUrl>

namespace tl::publish {

namespace {

// Where paper is US Letter.
constexpr QLocale::Territory kLetterTerritories[] = {
    QLocale::UnitedStates, QLocale::Canada,
    QLocale::Mexico,       QLocale::Chile,
    QLocale::Colombia,     QLocale::Venezuela,
    QLocale::Philippines,  QLocale::PuertoRico,
    QLocale::CostaRica,    QLocale::Guatemala,
    QLocale::Panama,       QLocale::ElSalvador,
    QLocale::Nicaragua,    QLocale::DominicanRepublic,
};

QString printerProgram()
{
    const QString given = qEnvironmentVariable("TAVELLE_PDF_PRINTER");
    return !given.isEmpty()
               ? given
               : QCoreApplication::applicationDirPath() + QStringLiteral("/tavelle-pdf");
}

constexpr int kPrintTimeoutMs = 120000;

} // namespace

QString paperForLocale(const QLocale &locale)
{
    for (const QLocale::Territory territory : kLetterTerritories)
        if (locale.territory() == territory)
            return QStringLiteral("Letter");
    return QStringLiteral("A4");
}

QString systemPaper()
{
    const QString paper = qEnvironmentVariable("LC_PAPER");
    return paperForLocale(paper.isEmpty() ? QLocale::system() : QLocale(paper.section(u'.', 0, 0)));
}

QString printablePage(const QString &compiledPath)
{
    const QString extension = store::lowerCasedExtension(compiledPath);
    const QString text = store::tl_stringWithContentsOfFile(compiledPath)
                             .value_or(store::DecodedText{{}, store::TextEncoding::UTF8})
                             .text;
    QString page =
        extension == u"html" ? text
        : extension == u"md"
            ? convert::tl_markdownToHTML(compiledPath)
            : convert::tl_createFormattedDocWithBody(
                  compiledPath, QStringLiteral("<pre>%1</pre>").arg(text.toHtmlEscaped()));
    const QString base =
        QUrl::fromLocalFile(path::deletingLastComponent(compiledPath) + u'/').toString();
    const qsizetype head = page.indexOf(QStringLiteral("<head>"));
    const QString baseTag = QStringLiteral("<base href=\"%1\" />").arg(base.toHtmlEscaped());
    return head < 0 ? baseTag + page : page.insert(head + 6, baseTag);
}

std::optional<QString> printCompiledDocumentToPDF(const QString &compiledPath, const QString &title,
                                                  const QString &folder)
{
    if (!QDir().mkpath(folder))
        return std::nullopt;
    const QString pdf = store::tl_uniqueNameForFileatPath(title + QStringLiteral(".pdf"), folder);
    QDir().mkpath(platform::temporaryFolder());
    const QString page = store::tl_uniqueNameForFileatPath(
        path::lastComponent(pdf) + QStringLiteral(".html"), platform::temporaryFolder());
    if (!store::tl_writeToFile(printablePage(compiledPath).toUtf8(), page, true))
        return std::nullopt;

    QProcess printer;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    printer.setProcessEnvironment(environment);
    printer.setProcessChannelMode(QProcess::MergedChannels);
    printer.start(printerProgram(), {page, pdf, systemPaper()});
    const bool printed = printer.waitForFinished(kPrintTimeoutMs) &&
                         printer.exitStatus() == QProcess::NormalExit && printer.exitCode() == 0 &&
                         QFile::exists(pdf);
    if (printer.state() != QProcess::NotRunning)
        printer.kill();
    QFile::remove(page);
    if (!printed) {
        logLine(QStringLiteral("PDF: printing %1 failed: %2")
                    .arg(compiledPath, QString::fromLocal8Bit(printer.readAll())));
        QFile::remove(pdf);
        return std::nullopt;
    }
    return pdf;
}

} // namespace tl::publish
