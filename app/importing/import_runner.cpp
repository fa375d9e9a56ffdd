#include "importing/import_runner.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "platform/alerts.h"
#include "progress_sheet.h"

#include <QDir>
#include <QFileDialog>
#include <QProgressDialog>
#include <QtConcurrent/QtConcurrentRun>

namespace tl::app {

namespace {

// The sheet's headline over its text.
QString sheetText(const QString &headline, const QString &text)
{
    return QStringLiteral("<b>%1</b><br>%2").arg(headline, text.toHtmlEscaped());
}

void post(const char *name, const QString &path)
{
    NotificationCenter::defaultCenter().post(QLatin1String(name), {{QStringLiteral("path"), path}});
}

} // namespace

ImportRunner::ImportRunner(QWidget *window) : QObject(window), m_window(window)
{
    connect(&m_watcher, &QFutureWatcher<Result>::finished, this, &ImportRunner::done);
}

ImportRunner::~ImportRunner()
{
    m_stop = true;
    m_watcher.waitForFinished();
}

void ImportRunner::chooseAndImport(const QString &book)
{
    if (book.isEmpty())
        return;
    QFileDialog dialog(m_window, QStringLiteral("Import"), QDir::homePath(),
                       QStringLiteral("Mail, Evernote and OPML files (*.eml *.enex *.opml)"));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setLabelText(QFileDialog::Accept, QStringLiteral("Import"));
    if (dialog.exec() == QDialog::Accepted)
        importFiles(dialog.selectedFiles(), book);
}

QStringList ImportRunner::importFiles(const QStringList &paths, const QString &book)
{
    QStringList taken;
    QStringList left;
    for (const QString &path : paths)
        (importers::isImportable(path) ? taken : left) << path;
    if (!taken.isEmpty()) {
        m_queue.append({taken, book});
        startNext();
    }
    return left;
}

void ImportRunner::offerEvernoteImport(const QString &exportPath)
{
    const QString book = path::deletingLastComponent(exportPath);
    const int answer = platform::alerts().run(
        {QStringLiteral("Import Evernote Notes?"),
         QStringLiteral("The notes contained in this file will be added to the book %1")
             .arg(path::lastComponent(book)),
         {QStringLiteral("Import"), QStringLiteral("Cancel")}});
    if (answer == 0)
        importFiles({exportPath}, book);
}

void ImportRunner::startNext()
{
    if (isRunning() || m_queue.isEmpty())
        return;
    const auto [paths, book] = m_queue.takeFirst();
    m_stop = false;
    const QString headline = QStringLiteral("Importing Notes...");
    m_progress = openProgressSheet(m_window, headline, sheetText(headline, QString()),
                                   QStringLiteral("Cancel"), 0);
    connect(m_progress, &QProgressDialog::canceled, this, [this] { m_stop = true; });
    // Each new document's name reaches the sheet on the main thread.
    QPointer<QProgressDialog> progress = m_progress;
    const auto report = [progress, headline](const QString &name) {
        QMetaObject::invokeMethod(
            progress,
            [progress, headline, name] {
                if (progress)
                    progress->setLabelText(sheetText(headline, name));
            },
            Qt::QueuedConnection);
    };
    m_watcher.setFuture(QtConcurrent::run([this, paths, book, report] {
        Result result;
        for (const QString &path : paths) {
            if (m_stop)
                break;
            const importers::ImportedFile imported =
                importers::tl_importIntoBook(path, book, report, &m_stop);
            result.documents << imported.documents;
            result.complete = result.complete && imported.complete;
        }
        return result;
    }));
}

void ImportRunner::done()
{
    const Result result = m_watcher.result();
    if (m_progress) {
        disconnect(m_progress, &QProgressDialog::canceled, this, nullptr);
        if (m_stop) {
            m_progress->deleteLater();
        } else {
            // The sheet stays until its button is pressed: finished, it says
            // so; stopped by a fault, it shows the last note that came in.
            QProgressDialog *sheet = m_progress;
            sheet->setRange(0, 1);
            sheet->setValue(result.complete ? 1 : 0);
            if (result.complete) {
                sheet->setWindowTitle(QStringLiteral("Import Finished"));
                sheet->setLabelText(
                    sheetText(QStringLiteral("Import Finished"),
                              QStringLiteral("%1 notes imported.").arg(result.documents.size())));
                sheet->setCancelButtonText(QStringLiteral("Done"));
            }
            connect(sheet, &QProgressDialog::canceled, sheet, &QObject::deleteLater);
        }
    }
    if (!result.documents.isEmpty()) {
        post(events::ReloadCurrentBook, path::deletingLastComponent(result.documents.first()));
        post(events::ShowItemAtPath, result.documents.first());
    }
    Q_EMIT finished(result.documents);
    startNext();
}

} // namespace tl::app
