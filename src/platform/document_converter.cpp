#include "platform/document_converter.h"

#include "platform/file_ops.h"
#include "platform/folders.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>
#include <mutex>
#include <spdlog/spdlog.h>

namespace tl::platform {

namespace {

// Exit status when no installed program writes the format.
constexpr int kNoConverter = 127;

struct FormatRow
{
    const char *format;
    const char *officeFilter;    // LibreOffice's --convert-to argument, or null
    const char *officeExtension; // the extension LibreOffice gives its output
    const char *pandocWriter;    // pandoc's -t argument, or null
};

// rtfd and webarchive have no writer on this platform.
constexpr FormatRow kFormats[] = {
    {"txt", "txt:Text (encoded):UTF8", "txt", "plain"},
    {"html", "html", "html", "html"},
    {"rtf", "rtf", "rtf", "rtf"},
    {"doc", "doc:MS Word 97", "doc", nullptr},
    {"docx", "docx:MS Word 2007 XML", "docx", "docx"},
    {"wordml", "xml:MS Word 2003 XML", "xml", nullptr},
    {"odt", "odt", "odt", "odt"},
};

const FormatRow *rowFor(const QString &format)
{
    for (const FormatRow &row : kFormats)
        if (format == QLatin1String(row.format))
            return &row;
    return nullptr;
}

int run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForStarted() || !process.waitForFinished(-1))
        return kNoConverter;
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : kNoConverter;
}

// LibreOffice names its output after the source in a folder of our choice;
// a private profile keeps it apart from a running office.
int convertWithOffice(const QString &office, const FormatRow &row, const ConversionRequest &request)
{
    if (!makeFolder(temporaryFolder()))
        return kNoConverter;
    QTemporaryDir work(QDir(temporaryFolder()).filePath(QStringLiteral("convert-XXXXXX")));
    if (!work.isValid())
        return kNoConverter;
    const QString profile =
        QUrl::fromLocalFile(work.filePath(QStringLiteral("profile"))).toString();
    const int status = run(office, {QStringLiteral("-env:UserInstallation=") + profile,
                                    QStringLiteral("--headless"), QStringLiteral("--convert-to"),
                                    QLatin1String(row.officeFilter), QStringLiteral("--outdir"),
                                    work.path(), request.source});
    const QString output = work.filePath(QFileInfo(request.source).completeBaseName() + u'.' +
                                         QLatin1String(row.officeExtension));
    if (status != 0)
        return status;
    return moveItem(output, request.target) ? 0 : kNoConverter;
}

int convertWithPandoc(const QString &pandoc, const FormatRow &row, const ConversionRequest &request)
{
    return run(pandoc, {QStringLiteral("--standalone"), QStringLiteral("--to"),
                        QLatin1String(row.pandocWriter), QStringLiteral("--output"), request.target,
                        request.source});
}

struct Slot
{
    std::mutex mutex;
    std::shared_ptr<DocumentConverter> converter = std::make_shared<SystemDocumentConverter>();
};

Slot &slot()
{
    static Slot instance;
    return instance;
}

} // namespace

DocumentConverter::~DocumentConverter() = default;

int SystemDocumentConverter::convert(const ConversionRequest &request)
{
    const FormatRow *row = rowFor(request.format);
    if (!row)
        return kNoConverter;
    QString office = QStandardPaths::findExecutable(QStringLiteral("libreoffice"));
    if (office.isEmpty())
        office = QStandardPaths::findExecutable(QStringLiteral("soffice"));
    if (!office.isEmpty())
        return convertWithOffice(office, *row, request);
    const QString pandoc = QStandardPaths::findExecutable(QStringLiteral("pandoc"));
    if (!pandoc.isEmpty() && row->pandocWriter)
        return convertWithPandoc(pandoc, *row, request);
    spdlog::info("no converter writes {} on this system", request.format.toStdString());
    return kNoConverter;
}

DocumentConverter &documentConverter()
{
    std::lock_guard lock(slot().mutex);
    return *slot().converter;
}

void setDocumentConverter(std::shared_ptr<DocumentConverter> converter)
{
    std::lock_guard lock(slot().mutex);
    slot().converter =
        converter ? std::move(converter) : std::make_shared<SystemDocumentConverter>();
}

} // namespace tl::platform
