// init, books, walk: the library itself.
#include "cli.h"
#include "platform/settings.h"
#include "shell/app_delegate.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/reading_order.h"

#include <QDir>
#include <QFileInfo>

namespace tl::cli {

namespace {

void describeInit(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("DIR"),
                            QStringLiteral("The folder to use as the library (made if missing)."));
}

int runInit(const QCommandLineParser &, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("usage: tavelle init DIR"), Usage);
    const QString dir = absolutePath(in.arguments.first());
    if (shell::isUserHome(dir))
        return fail(QStringLiteral("%1: %2").arg(QLatin1String(shell::kHomeFolderAlert),
                                                 QLatin1String(shell::kHomeFolderAlertText)));
    if (QFileInfo::exists(dir) && !QFileInfo(dir).isDir())
        return fail(QStringLiteral("Not a folder: %1").arg(dir));
    if (!QFileInfo::exists(dir) && !QDir().mkpath(dir))
        return fail(QStringLiteral("Cannot create folder: %1").arg(dir));
    // The library chosen here is the stored one from now on.
    store::setLibraryRootOverride({});
    shell::tl_setRootToPath(dir);
    if (in.json)
        printValue(QVariantMap{{"library", store::libraryRoot()}}, true);
    else
        printLine(QStringLiteral("Library: %1").arg(store::libraryRoot()));
    return Success;
}

void describeBook(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("BOOK"),
                            QStringLiteral("A book of the library; the root when left out."),
                            QStringLiteral("[BOOK]"));
}

std::optional<QString> bookArgument(const Invocation &in)
{
    if (in.arguments.size() > 1)
        return std::nullopt;
    const QString book =
        in.arguments.isEmpty() ? store::libraryRoot() : absolutePath(in.arguments.first());
    return book;
}

int runBooks(const QCommandLineParser &, const Invocation &in)
{
    const std::optional<QString> book = bookArgument(in);
    if (!book)
        return fail(QStringLiteral("usage: tavelle %1 [BOOK]").arg(in.command), Usage);
    if (!store::tl_pathIsBook(*book))
        return fail(QStringLiteral("Not a book: %1").arg(*book));
    printList(in.command == u"books" ? store::tl_listOfBooksAtPath(*book)
                                     : store::tl_sortedListOfAllItemsInHierarchy(*book),
              in.json);
    return Success;
}

} // namespace

const std::vector<Command> &libraryCommands()
{
    static const std::vector<Command> commands{
        {"init", "Make a folder the library and prepare it.", false, describeInit, runInit},
        {"books", "List the books in a book, in the book's order.", true, describeBook, runBooks},
        {"walk", "List every document below a book in reading order.", true, describeBook,
         runBooks},
    };
    return commands;
}

} // namespace tl::cli
