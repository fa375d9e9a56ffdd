// import, eml2html, opml2html: foreign material into the library, and as the
// HTML the program shows for it.
#include "cli.h"
#include "importers/evernote_importer.h"
#include "importers/file_import.h"
#include "importers/mail_message.h"
#include "importers/opml_converter.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/library_root.h"

#include <QFileInfo>
#include <functional>

namespace tl::cli {

namespace {

void describeFileSource(QCommandLineParser &parser)
{
    parser.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("File to convert."));
    parser.addOption(
        {QStringLiteral("o"), QStringLiteral("Write to FILE."), QStringLiteral("FILE")});
}

// The one file (PATH) a command converts, and the delivery of its HTML.
int convertFile(const QCommandLineParser &parser, const Invocation &in,
                const std::function<QString(const QString &path)> &conversion)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("%1 takes one PATH").arg(in.command), Usage);
    const QString path = absolutePath(in.arguments.first());
    if (!QFileInfo(path).isFile())
        return fail(QStringLiteral("Cannot read %1").arg(in.arguments.first()));
    return deliver(conversion(path), parser);
}

QString outlineFileToHTML(const QString &path)
{
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(path);
    return file ? importers::tl_OPMLToHTML(file->text) : QString();
}

int importFiles(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.isEmpty())
        return fail(QStringLiteral("import takes one PATH or more"), Usage);
    const QString into = parser.value(QStringLiteral("into"));
    const std::optional<QString> book = into.isEmpty()
                                            ? std::optional<QString>(store::libraryRoot())
                                            : itemInLibrary(into, Inside::RootAllowed);
    if (!book)
        return Failure;
    if (!QFileInfo(*book).isDir())
        return fail(QStringLiteral("Not a book: %1").arg(into));
    QStringList created;
    int status = Success;
    for (const QString &argument : in.arguments) {
        const QString path = absolutePath(argument);
        if (store::lowerCasedExtension(path) == u"enex") {
            importers::TLKSEvernoteImporter importer(path, *book);
            if (!importer.start())
                status = fail(
                    QStringLiteral("Stopped early in %1: the notes before are kept").arg(argument));
            created << importer.notes();
        } else if (const std::optional<QString> document =
                       importers::tl_importFileIntoBook(path, *book)) {
            created << *document;
        } else {
            status = fail(
                QStringLiteral("Cannot import %1: only .eml, .enex and .opml files").arg(argument));
        }
    }
    printList(created, in.json);
    return status;
}

} // namespace

const std::vector<Command> &importCommands()
{
    static const std::vector<Command> commands{
        {"import",
         "Mail messages (.eml), Evernote exports (.enex) and outlines (.opml) into a book", true,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("PATH"),
                                          QStringLiteral("Files to import."),
                                          QStringLiteral("PATH..."));
             parser.addOption({QStringLiteral("into"),
                               QStringLiteral("The book to put them in (default: the library)."),
                               QStringLiteral("BOOK")});
         },
         importFiles},
        {"eml2html", "A mail message as HTML, its attachments in the temporary folder", false,
         describeFileSource,
         [](const QCommandLineParser &parser, const Invocation &in) {
             return convertFile(parser, in, importers::tl_emlFileToHTML);
         }},
        {"opml2html", "An OPML outline as nested HTML lists", false, describeFileSource,
         [](const QCommandLineParser &parser, const Invocation &in) {
             return convertFile(parser, in, outlineFileToHTML);
         }},
    };
    return commands;
}

} // namespace tl::cli
