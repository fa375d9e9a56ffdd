// paste, share: material from the clipboard or from scripts into a book, and
// files and text handed to the program to take in.
#include "cli.h"
#include "importers/mime_pasteboard.h"
#include "importers/shared_items.h"
#include "shell/url_actions.h"
#include "store/library_root.h"

#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <cstring>

namespace tl::cli {

namespace {

const char kFromStdin[] = "--from-stdin";

bool displayPresent()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

QByteArray standardInput()
{
    QFile in;
    return in.open(stdin, QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

std::optional<QString> bookArgument(const QString &argument)
{
    const std::optional<QString> book = itemInLibrary(argument, Inside::RootAllowed);
    if (book && !QFileInfo(*book).isDir()) {
        fail(QStringLiteral("Not a book: %1").arg(argument));
        return std::nullopt;
    }
    return book;
}

int paste(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("paste takes one BOOK"), Usage);
    const std::optional<QString> book = bookArgument(in.arguments.first());
    if (!book)
        return Failure;
    const QString type = parser.value(QString::fromLatin1(kFromStdin + 2));
    QMimeData fromStdin;
    const QMimeData *data = &fromStdin;
    if (!type.isEmpty()) {
        fromStdin.setData(type, standardInput());
        if (!importers::offersImportableFormat(fromStdin))
            return fail(QStringLiteral("Cannot paste %1: use text/plain, text/html, "
                                       "text/uri-list, image/png, image/jpeg, image/tiff or "
                                       "text/rtf")
                            .arg(type),
                        Usage);
    } else if (qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        data = QGuiApplication::clipboard()->mimeData();
    } else {
        return fail(QStringLiteral("No display to take the clipboard from: use --from-stdin TYPE"),
                    Usage);
    }
    const importers::PastedDocument pasted =
        data ? importers::tl_addDocumentFromPasteboard(*book,
                                                       importers::pasteboardFromMimeData(*data))
             : importers::PastedDocument{};
    if (pasted.path.isEmpty())
        return fail(QStringLiteral("Nothing to paste that Tavelle takes"));
    if (in.json)
        printValue(QVariantMap{{"path", pasted.path}, {"url", pasted.address}}, true);
    else
        printLine(pasted.path);
    return Success;
}

// The book shared material is for, relative to the library root: --into, or
// the inbox when one is set, else the root.
std::optional<QString> sharedBook(const QCommandLineParser &parser)
{
    const QString into = parser.value(QStringLiteral("into"));
    const QString root = store::libraryRoot();
    if (into.isEmpty())
        return root.isEmpty() ? QString() : shell::defaultInboxOrRoot().mid(root.size() + 1);
    const std::optional<QString> book = bookArgument(into);
    return book ? std::optional<QString>(book->mid(root.size() + 1)) : std::nullopt;
}

int share(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.isEmpty())
        return fail(QStringLiteral("share takes one PATH or more, or - for text"), Usage);
    const std::optional<QString> book = sharedBook(parser);
    if (!book)
        return Failure;
    QStringList shared;
    int status = Success;
    for (const QString &argument : in.arguments) {
        const bool text = argument == u"-";
        const QFileInfo file(absolutePath(argument));
        // A file without an extension would never be taken in.
        const QString refusal = text || (file.isFile() && !file.suffix().isEmpty()) ? QString()
                                : file.isFile() ? QStringLiteral("it has no extension")
                                                : QStringLiteral("no such file");
        if (!refusal.isEmpty()) {
            status = fail(QStringLiteral("Cannot share %1: %2").arg(argument, refusal));
            continue;
        }
        const std::optional<QString> copy =
            text ? importers::shareText(QString::fromUtf8(standardInput()), *book)
                 : importers::shareFile(file.absoluteFilePath(), *book);
        if (copy)
            shared << *copy;
        else
            status = fail(QStringLiteral("Cannot share %1").arg(argument));
    }
    if (parser.isSet(QStringLiteral("now"))) {
        if (store::libraryRoot().isEmpty())
            return fail(QStringLiteral("No library to take the shared items into"), Usage);
        shared = importers::TLStaticFunctions::importSharedItems();
    }
    printList(shared, in.json);
    return status;
}

} // namespace

bool pasteNeedsClipboard(int argc, char **argv)
{
    bool pasting = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], kFromStdin) == 0)
            return false;
        pasting = pasting || std::strcmp(argv[i], "paste") == 0;
    }
    return pasting && displayPresent();
}

const std::vector<Command> &pasteCommands()
{
    static const std::vector<Command> commands{
        {"paste", "The clipboard (or standard input) as a new document of a book", true,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("BOOK"),
                                          QStringLiteral("The book to paste into."));
             parser.addOption({QString::fromLatin1(kFromStdin + 2),
                               QStringLiteral("Paste standard input as TYPE (text/plain, "
                                              "text/html, image/png, ...) instead of the "
                                              "clipboard."),
                               QStringLiteral("TYPE")});
         },
         paste},
        {"share", "Files, or text from standard input, handed to the program to take in", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("PATH"),
                                          QStringLiteral("Files to share, or - for text."),
                                          QStringLiteral("PATH...|-"));
             parser.addOption({QStringLiteral("into"),
                               QStringLiteral("The book they are for (default: the inbox, "
                                              "else the library)."),
                               QStringLiteral("BOOK")});
             parser.addOption({QStringLiteral("now"),
                               QStringLiteral("Take everything shared into the library now "
                                              "rather than when the program is next active.")});
         },
         share},
    };
    return commands;
}

} // namespace tl::cli
