// tree, ls, sort, watch: the outline and the document list as the desktop
// panes show them, and the changes other programs make.
#include "browser/document_list.h"
#include "browser/outline_controller.h"
#include "browser/outline_item.h"
#include "browser/smart_books.h"
#include "cli.h"
#include "foundation/notification_center.h"
#include "platform/file_watcher.h"
#include "platform/settings.h"
#include "shell/shell_keys.h"
#include "store/item_path.h"
#include "store/library_root.h"

#include <QCoreApplication>
#include <cstdio>

namespace tl::cli {

namespace {

using browser::TLKSDocumentListViewController;
using browser::TLKSOutlineItem;

struct SmartName
{
    const char *name;
    int type;
};

constexpr SmartName kSmartNames[] = {
    {"context", browser::Context},    {"search", browser::SearchResults},
    {"due", browser::DueTasks},       {"favorites", browser::Favorites},
    {"inbox", browser::Inbox},        {"tasklists", browser::AllTaskLists},
    {"recent", browser::RecentItems}, {"modified", browser::RecentlyModified},
    {"contexts", browser::Contexts},  {"conflicts", browser::ICloudConflicts},
};

std::optional<int> smartTypeNamed(const QString &name)
{
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    if (isNumber)
        return number;
    for (const SmartName &s : kSmartNames)
        if (name == QLatin1String(s.name))
            return s.type;
    return std::nullopt;
}

QVariantMap treeOf(TLKSOutlineItem *item, int depth)
{
    QVariantMap node{{"title", item->title()}, {"path", item->fullPath()}};
    if (item->smartBookType != 0)
        node.insert("smartType", item->smartBookType);
    if (item->groupItemType != browser::NoGroup)
        node.insert("group", item->groupItemType);
    if (depth != 0) {
        QVariantList children;
        for (const auto &child : item->children())
            children << treeOf(child.get(), depth - 1);
        node.insert("children", children);
    }
    return node;
}

void printTree(const QVariantMap &node, int level)
{
    printLine(QString(level * 2, u' ') + node.value("title").toString());
    for (const QVariant &child : node.value("children").toList())
        printTree(child.toMap(), level + 1);
}

void describeTree(QCommandLineParser &p)
{
    p.addOption({"depth", "Levels below the groups to show (all when left out).", "N"});
}

int runTree(const QCommandLineParser &p, const Invocation &in)
{
    const int depth = p.isSet("depth") ? p.value("depth").toInt() : -1;
    TLKSOutlineItem &root = TLKSOutlineItem::rootItem();
    QVariantList groups;
    for (const auto &group : root.children())
        groups << treeOf(group.get(), depth);
    if (in.json) {
        printValue(groups, true);
        return Success;
    }
    for (const QVariant &group : groups)
        printTree(group.toMap(), 0);
    return Success;
}

void describeList(QCommandLineParser &p)
{
    p.addPositionalArgument("BOOK", "The book, or the tags of a context; the root when left out.",
                            "[BOOK]");
    p.addOption({"smart",
                 "A smart book: a number or " +
                     QStringLiteral("due, favorites, inbox, tasklists, recent, modified, "
                                    "contexts, conflicts, search, context."),
                 "TYPE"});
    p.addOption({"sort", "Sort by title, creationDate, modDate, DueDate or custom.", "KEY"});
    p.addOption({"desc", "Sort descending."});
    p.addOption({"filter", "Show only names containing the text.", "TEXT"});
    p.addOption({"collapsed", "List as with the outline hidden: sub-books and smart books too."});
}

QVariantList dictionaries(const QList<store::ListRow> &rows)
{
    QVariantList result;
    for (const store::ListRow &row : rows)
        result << row.toDictionary();
    return result;
}

int runList(const QCommandLineParser &p, const Invocation &in)
{
    if (in.arguments.size() > 1)
        return fail("usage: tavelle ls [BOOK] [--smart TYPE] [--sort KEY] [--desc] "
                    "[--filter TEXT] [--collapsed] [--json]",
                    Usage);
    TLKSDocumentListViewController list;
    if (p.isSet("smart")) {
        const auto type = smartTypeNamed(p.value("smart"));
        if (!type)
            return fail("Unknown smart book: " + p.value("smart"), Usage);
        list.smartBookType = *type;
    }
    const QString argument = in.arguments.value(0);
    if (list.smartBookType == browser::Context)
        list.path = argument;
    else if (list.smartBookType == browser::Inbox)
        list.path = browser::defaultInboxPath(), list.smartBookType = 0;
    else if (list.smartBookType != 0)
        list.path = browser::titleForSmartBookOfType(list.smartBookType);
    else
        list.path = argument.isEmpty() ? store::libraryRoot() : absolutePath(argument);
    if (list.smartBookType == 0 && !store::tl_pathIsBook(list.path))
        return fail("Not a book: " + list.path);

    // The outline's state is the desktop's; this listing only borrows it.
    platform::Settings &settings = platform::settings();
    const QVariant collapsed = settings.object(keys::setting::OutlineIsCollapsed);
    if (p.isSet("collapsed"))
        settings.set(keys::setting::OutlineIsCollapsed, true);
    list.searchFilter = p.value("filter");
    // As the list loads a book: a plain book outside the library shows the root.
    list.reloadBook();
    if (p.isSet("sort") || p.isSet("desc")) {
        if (p.isSet("sort"))
            list.sortOrder = p.value("sort");
        list.sortAscending = !p.isSet("desc");
        list.sortDocuments();
    }
    if (p.isSet("collapsed"))
        settings.set(keys::setting::OutlineIsCollapsed, collapsed);

    if (in.json) {
        printValue(QVariantMap{{"headers", QVariantList{list.smartBooksHeader(), list.booksHeader(),
                                                        list.documentsHeader()}},
                               {"path", list.path},
                               {"smartBooks", dictionaries(list.smartBooksList)},
                               {"books", dictionaries(list.booksList)},
                               {"documents", dictionaries(list.documentsList)},
                               {"hiddenDoneTasks", qint64(list.numberOfHiddenDoneTasks)},
                               {"sortOrder", list.sortOrder},
                               {"ascending", list.sortAscending},
                               {"emptyText", list.emptyListText()}},
                   true);
        return Success;
    }
    for (const browser::ListEntry &entry : list.entries()) {
        if (!entry.row) {
            printLine(entry.header);
            continue;
        }
        const QString icon =
            entry.row->taskIcon.isEmpty() ? QString() : " [" + entry.row->taskIcon + "]";
        printLine("  " + entry.row->title + icon);
    }
    if (!list.emptyListText().isEmpty())
        printLine(list.emptyListText());
    return Success;
}

void describeSort(QCommandLineParser &p)
{
    p.addPositionalArgument("BOOK", "The book, in the library.");
    p.addPositionalArgument("INDEX", "0 title, 1 created, 2 modified, 3 custom, 4 and 6 "
                                     "descending, 5 ascending.");
}

int runSort(const QCommandLineParser &, const Invocation &in)
{
    bool isNumber = false;
    const int index = in.arguments.value(1).toInt(&isNumber);
    if (in.arguments.size() != 2 || !isNumber || index < 0 || index > 6)
        return fail("usage: tavelle sort BOOK INDEX (INDEX 0 to 6)", Usage);
    const std::optional<QString> book = itemInLibrary(in.arguments.first(), Inside::RootAllowed);
    if (!book)
        return Failure;
    TLKSDocumentListViewController list;
    list.path = *book;
    if (!store::tl_pathIsBook(list.path))
        return fail("Not a book: " + list.path);
    list.loadDisplayParameters();
    list.getDocumentsInFolder();
    list.selectSortOrder(index);
    printValue(QVariantMap{{"sortOrder", list.sortOrder}, {"ascending", list.sortAscending}},
               in.json);
    return Success;
}

// One line for each report and event as it comes: JSON with --json, else
// the kind or event name with its paths.
void printNow(const QVariantMap &line, bool json)
{
    if (json) {
        printValue(line, true);
    } else if (line.contains("report")) {
        const QVariantMap report = line.value("report").toMap();
        QString text = report.value("kind").toString() + u' ' + report.value("path").toString();
        if (report.contains("newPath"))
            text += " -> " + report.value("newPath").toString();
        printLine(text);
    } else {
        QStringList fields{line.value("event").toString()};
        const QVariantMap payload = line.value("payload").toMap();
        for (auto it = payload.cbegin(); it != payload.cend(); ++it)
            fields << it.key() + u'=' + it.value().toString();
        printLine(fields.join(u' '));
    }
    std::fflush(stdout);
}

void describeWatch(QCommandLineParser &p)
{
    p.addPositionalArgument("BOOK", "The book to watch; the root when left out.", "[BOOK]");
}

int runWatch(const QCommandLineParser &, const Invocation &in)
{
    const QString book =
        in.arguments.isEmpty() ? store::libraryRoot() : absolutePath(in.arguments.first());
    if (!store::tl_pathIsBook(book))
        return fail("Not a book: " + book);
    browser::TLKSOutlineViewController outline;
    platform::FileWatcher watcher;
    const bool json = in.json;
    watcher.onReport = [&outline, json](const platform::FileWatchReport &report) {
        printNow(QVariantMap{{"report", report.toDictionary()}}, json);
        outline.handleWatchReport(report);
    };
    ScopedObserver events(QString(), [json](const QString &name, const QVariantMap &payload) {
        printNow(QVariantMap{{"event", name}, {"payload", payload}}, json);
    });
    if (!watcher.watch(book))
        return fail("Cannot watch " + book);
    return QCoreApplication::exec();
}

} // namespace

const std::vector<Command> &browserCommands()
{
    static const std::vector<Command> commands{
        {"tree", "Show the outline: smart books and books.", true, describeTree, runTree},
        {"ls", "Show the document list of a book or smart book.", true, describeList, runList},
        {"sort", "Choose a book's sort order by the menu's index.", true, describeSort, runSort},
        {"watch",
         "Print changes below a book and the events they post, one a line, until interrupted.",
         true, describeWatch, runWatch},
    };
    return commands;
}

} // namespace tl::cli
