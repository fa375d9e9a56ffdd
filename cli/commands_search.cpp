// search, recent-modified: the library's full-text search and the Recently
// Modified list, from the index brought up to date by one walk first.
#include "browser/library_search.h"
#include "cli.h"
#include "platform/settings.h"
#include "search/search_index.h"
#include "store/keys.h"
#include "store/library_root.h"

namespace tl::cli {

namespace {

// Titles and paths, one "TITLE<tab>PATH" a line, or as JSON.
void printRows(const QList<store::ListRow> &rows, bool json)
{
    if (json) {
        QVariantList list;
        for (const store::ListRow &row : rows)
            list << QVariantMap{{"title", row.title}, {"path", row.path}};
        printValue(list, true);
        return;
    }
    for (const store::ListRow &row : rows)
        printLine(row.title + u'\t' + row.path);
}

void describeSearch(QCommandLineParser &p)
{
    p.addPositionalArgument("TERMS",
                            "What to find, as typed into the search field: every term "
                            "must match; \"quoted words\" are one phrase.",
                            "TERMS...");
    p.addOption({"all", "Search the whole library (the default)."});
    p.addOption({"scope", "Search only below the book.", "BOOK"});
    p.addOption({"title", "Search names only."});
    p.addOption({"content", "Search contents only."});
    p.addOption({"rebuild", "Build the index anew from the library; no search."});
}

int runSearch(const QCommandLineParser &p, const Invocation &in)
{
    if (p.isSet("rebuild")) {
        if (!browser::searchIndexOfLibrary().rebuild())
            return fail(QStringLiteral("The search index could not be written: %1")
                            .arg(search::SearchIndex::databasePathOfLibrary()));
        return Success;
    }
    if (in.arguments.isEmpty() || (p.isSet("all") && p.isSet("scope")) ||
        (p.isSet("title") && p.isSet("content")))
        return fail("usage: tavelle search TERMS... [--all|--scope BOOK] [--title|--content] "
                    "[--json]",
                    Usage);
    QString scope = store::libraryRoot();
    if (p.isSet("scope")) {
        const std::optional<QString> book = itemInLibrary(p.value("scope"), Inside::RootAllowed);
        if (!book)
            return Failure;
        scope = *book;
    }
    const search::Field field = p.isSet("title")     ? search::Field::Name
                                : p.isSet("content") ? search::Field::Content
                                                     : search::Field::NameOrContent;
    const browser::SearchOutcome results = browser::runLibrarySearch(
        in.arguments.join(u' '), scope, field, browser::SearchSource::FreshIndex);
    printRows(results.rows, in.json);
    return Success;
}

void describeRecentModified(QCommandLineParser &p)
{
    p.addOption({"weeks",
                 "Documents modified within the last N weeks (1 to 4); the setting "
                 "recentlyModifiedSince when left out.",
                 "N"});
}

int runRecentModified(const QCommandLineParser &p, const Invocation &in)
{
    qint64 since =
        platform::settings().integer(QLatin1String(keys::setting::RecentlyModifiedSince));
    if (p.isSet("weeks")) {
        bool isNumber = false;
        const int weeks = p.value("weeks").toInt(&isNumber);
        if (!isNumber || weeks < 1)
            return fail("--weeks takes a number of weeks, 1 or more", Usage);
        since = weeks - 1;
    }
    printRows(browser::tl_recentlyModifiedItems(since), in.json);
    return Success;
}

} // namespace

const std::vector<Command> &searchCommands()
{
    static const std::vector<Command> commands{
        {"search", "Find items by name and content (titles and paths, by title)", true,
         describeSearch, runSearch},
        {"recent-modified", "Documents modified lately, newest first", true, describeRecentModified,
         runRecentModified},
    };
    return commands;
}

} // namespace tl::cli
