// import, eml2html, opml2html, webarchive2html: foreign material into the
// library, and as the HTML the program shows for it.
#include "cli.h"
#include "importers/file_import.h"
#include "importers/mail_message.h"
#include "importers/opml_converter.h"
#include "importers/webarchive.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/library_root.h"

#include <QFileInfo>
#include <functional>
#include <optional>

namespace tl::cli {

namespace {

void describeFileSource(QCommandLineParser &parser)
{
    parser.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("File to convert."));
    parser.addOption(
        {QStringLiteral("o"), QStringLiteral("Write to FILE."), QStringLiteral("FILE")});
}

// The one file (PATH) a command converts; nothing, with the error printed
// and its status in `status`, when there is none.
std::optional<QString> sourceFile(const Invocation &in, int &status)
{
    if (in.arguments.size() != 1) {
        status = fail(QStringLiteral("%1 takes one PATH").arg(in.command), Usage);
        return std::nullopt;
    }
    const QString path = absolutePath(in.arguments.first());
    if (!QFileInfo(path).isFile()) {
        status = fail(QStringLiteral("Cannot read %1").arg(in.arguments.first()));
        return std::nullopt;
    }
    return path;
}

// The delivery of the HTML of the one file a command converts.
int convertFile(const QCommandLineParser &parser, const Invocation &in,
                const std::function<QString(const QString &path)> &conversion)
{
    int status = Success;
    const std::optional<QString> path = sourceFile(in, status);
    return path ? deliver(conversion(*path), parser) : status;
}

QString outlineFileToHTML(const QString &path)
{
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(path);
    return file ? importers::tl_OPMLToHTML(file->text) : QString();
}

// The page shown for a web archive, or with --save the formatted document
// made beside it.
int webarchiveToHTML(const QCommandLineParser &parser, const Invocation &in)
{
    const bool save = parser.isSet(QStringLiteral("save"));
    if (save && parser.isSet(QStringLiteral("o")))
        return fail(QStringLiteral("--save writes beside the archive; -o is for the page"), Usage);
    int status = Success;
    const std::optional<QString> path = sourceFile(in, status);
    if (!path)
        return status;
    const QString result =
        save ? importers::tl_saveWebarchiveAsHTML(*path) : importers::tl_webarchiveToHTML(*path);
    if (result.isEmpty())
        return fail(QStringLiteral("Not a web archive with a UTF-8 page: %1").arg(*path));
    if (!save)
        return deliver(result, parser);
    printValue(result, in.json);
    return Success;
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
        const importers::ImportedFile imported = importers::tl_importIntoBook(path, *book);
        created << imported.documents;
        if (imported.complete)
            continue;
        status = store::lowerCasedExtension(path) == u"enex"
                     ? fail(QStringLiteral("Stopped early in %1: the notes before are kept")
                                .arg(argument))
                     : fail(QStringLiteral("Cannot import %1: only .eml, .enex and .opml files")
                                .arg(argument));
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
        {"webarchive2html",
         "A saved web page as HTML, its pictures in the temporary folder; with --save a "
         "document beside it",
         false,
         [](QCommandLineParser &parser) {
             describeFileSource(parser);
             parser.addOption({QStringLiteral("save"),
                               QStringLiteral("Make an HTML document beside the archive, its "
                                              "pictures in TLImages, and print its path.")});
         },
         webarchiveToHTML},
    };
    return commands;
}

} // namespace tl::cli
