#include "publish_runner.h"

#include "foundation/path_string.h"
#include "platform/alerts.h"
#include "progress_sheet.h"
#include "publish/compile_selection.h"
#include "publish/ebook_details.h"
#include "publish/pdf_printing.h"
#include "publish/publish_texts.h"
#include "publish_sheets.h"

#include <QFileInfo>
#include <QProgressDialog>
#include <QtConcurrent/QtConcurrentRun>

namespace tl::app {

namespace {

// The book a run works in: the one shown, else the first item's own.
QString baseBook(const QStringList &selection, const QString &book)
{
    if (!book.isEmpty() || selection.isEmpty())
        return book;
    return QFileInfo(selection.first()).isDir() ? selection.first()
                                                : path::deletingLastComponent(selection.first());
}

} // namespace

PublishRunner::PublishRunner(QWidget *window) : QObject(window), m_window(window)
{
    connect(&m_watcher, &QFutureWatcher<QString>::finished, this, &PublishRunner::done);
}

PublishRunner::~PublishRunner()
{
    if (m_compiler)
        m_compiler->stopProcess = true;
    m_watcher.waitForFinished();
}

void PublishRunner::compile(const QStringList &selection, const QString &book)
{
    if (isRunning())
        return;
    const QStringList documents = selection.isEmpty() ? QStringList{book} : selection;
    if (publish::compilableDocuments(documents).isEmpty()) {
        platform::alerts().run({QString::fromUtf8(publish::texts::NothingToCompile),
                                QString(),
                                {QString::fromUtf8(publish::texts::OK)}});
        return;
    }
    CompileSheet sheet(publish::proposedCompileTitle(QString(), documents), false, m_window);
    if (sheet.exec() != QDialog::Accepted)
        return;
    const CompileChoice choice = sheet.choice();
    QString pdfFolder;
    if (choice.pdf) {
        const std::optional<QString> folder = platform::alerts().chooseFolder(
            QStringLiteral("Choose the folder for the PDF."), QStringLiteral("Choose"));
        if (!folder)
            return;
        pdfFolder = *folder;
    }
    run(QString::fromUtf8(choice.pdf ? publish::texts::CompilePDFTitle
                                     : publish::texts::CompileTitle),
        baseBook(documents, book),
        [documents, choice, pdfFolder](publish::TLKSDocumentCompiler &compiler) {
            compiler.targetPath = pdfFolder;
            const QString compiled = compiler.tl_createHTMLFromDocuments(
                documents, choice.title, publish::separatorForChoice(choice.separator),
                choice.autoFormat);
            if (!compiled.isEmpty() && choice.pdf && !compiler.stopProcess)
                publish::printCompiledDocumentToPDF(compiled, choice.title, pdfFolder);
            return compiled;
        });
}

void PublishRunner::createEBook(const QStringList &selection, const QString &book)
{
    if (isRunning())
        return;
    const QString base = baseBook(selection, book);
    EBookSheet sheet(publish::proposedEBookAttributes(selection, base), m_window);
    if (sheet.exec() != QDialog::Accepted)
        return;
    const publish::EBookAttributes attributes = sheet.attributes();
    run(QString::fromUtf8(publish::texts::EBookTitle), base,
        [attributes, selection](publish::TLKSDocumentCompiler &compiler) {
            return compiler.tl_makeePubWithAttributes(attributes, selection).value_or(QString());
        });
}

void PublishRunner::run(const QString &label, const QString &base, Work work)
{
    m_compiler = std::make_unique<publish::TLKSDocumentCompiler>();
    m_compiler->basePath = base;
    m_progress = openProgressSheet(m_window, label, label, QStringLiteral("Stop"));
    publish::TLKSDocumentCompiler *compiler = m_compiler.get();
    connect(m_progress, &QProgressDialog::canceled, this,
            [compiler] { compiler->stopProcess = true; });
    // The worker's progress reaches the sheet on the main thread.
    QPointer<QProgressDialog> progress = m_progress;
    compiler->setProgressSheet({{},
                                [progress](double percent) {
                                    QMetaObject::invokeMethod(
                                        progress,
                                        [progress, percent] {
                                            if (progress)
                                                progress->setValue(int(percent));
                                        },
                                        Qt::QueuedConnection);
                                },
                                {}});
    m_watcher.setFuture(QtConcurrent::run([compiler, work] { return work(*compiler); }));
}

void PublishRunner::done()
{
    const QString path = m_watcher.result();
    if (m_progress)
        m_progress->deleteLater();
    m_compiler.reset();
    showMadeDocument(path);
    Q_EMIT finished(path);
}

} // namespace tl::app
