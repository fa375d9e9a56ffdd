// tags, fav: contexts of items and the favourites.
#include "cli.h"
#include "contexts/tag_collection.h"
#include "contexts/tag_database.h"
#include "contexts/tag_rename.h"
#include "contexts/text_scan.h"

#include <QFile>
#include <QTextStream>
#include <algorithm>

namespace tl::cli {

namespace {

const QString kCounts = QStringLiteral("counts");
const QString kFull = QStringLiteral("full");
const QString kInText = QStringLiteral("in-text");

struct Action
{
    const char *name;
    const char *arguments;
    // The number of arguments, and whether the first names an item.
    qsizetype minimum;
    qsizetype maximum;
    bool firstIsItem;
    std::function<int(const QStringList &, const QCommandLineParser &, bool)> run;
};

int listTags(const QStringList &, const QCommandLineParser &parser, bool json)
{
    const QStringList tags = contexts::tl_listOfAllAvailableTags();
    if (!parser.isSet(kCounts)) {
        printList(tags, json);
        return Success;
    }
    QVariantList rows;
    for (const QString &tag : tags) {
        const int count = contexts::tl_numberOfItemsForTag(tag);
        if (json)
            rows << QVariantMap{{QStringLiteral("tag"), tag}, {QStringLiteral("count"), count}};
        else
            printLine(tag + u'\t' + QString::number(count));
    }
    if (json)
        printValue(rows, true);
    return Success;
}

int extractTags(const QStringList &args, const QCommandLineParser &, bool json)
{
    QString text;
    if (args[0] == u"-") {
        QFile input;
        if (!input.open(stdin, QIODevice::ReadOnly))
            return fail(QStringLiteral("Cannot read the standard input"));
        text = QString::fromUtf8(input.readAll());
    } else {
        const QString path = absolutePath(args[0]);
        if (!QFile::exists(path))
            return fail(QStringLiteral("No such file: %1").arg(path));
        text = contexts::scannableText(path);
    }
    const contexts::TagSet found = contexts::tl_extractTagsFromString(text);
    QStringList words(found.cbegin(), found.cend());
    std::sort(words.begin(), words.end());
    printList(words, json);
    return Success;
}

int renameTag(const QString &tag, const QString &newName, const QCommandLineParser &parser,
              bool json)
{
    const QStringList documents = contexts::renameTagInStores(tag, newName);
    const int rewritten =
        parser.isSet(kInText) ? contexts::renameTagInDocuments(documents, tag, newName) : 0;
    printValue(json ? QVariant(QVariantMap{{QStringLiteral("documents"), documents},
                                           {QStringLiteral("rewritten"), rewritten}})
                    : QVariant(rewritten),
               json);
    return Success;
}

const std::vector<Action> &tagActions()
{
    static const std::vector<Action> list{
        {"list", "[--counts]", 0, 0, false, listTags},
        {"items", "TAG...", 1, 1000, false,
         [](const QStringList &args, const QCommandLineParser &, bool json) {
             printList(contexts::itemsBearingAllTags(args), json);
             return int(Success);
         }},
        {"of", "PATH", 1, 1, true,
         [](const QStringList &args, const QCommandLineParser &, bool json) {
             printList(contexts::tl_verifiedTagList(args[0]), json);
             return int(Success);
         }},
        {"add", "PATH TAG", 2, 2, true,
         [](const QStringList &args, const QCommandLineParser &, bool) {
             contexts::tl_setTag(args[0], args[1]);
             contexts::tl_collectTagsInPlist(args[0]);
             return int(Success);
         }},
        {"rm", "PATH TAG", 2, 2, true,
         [](const QStringList &args, const QCommandLineParser &, bool) {
             contexts::tl_clearTag(args[0], args[1]);
             return int(Success);
         }},
        {"extract", "PATH|-", 1, 1, false, extractTags},
        {"collect", "[--full]", 0, 0, false,
         [](const QStringList &, const QCommandLineParser &parser, bool json) {
             const contexts::CollectionResult result = parser.isSet(kFull)
                                                           ? contexts::tl_refreshContexts()
                                                           : contexts::collectNewContexts();
             printValue(qlonglong(result.plists), json);
             return int(Success);
         }},
        {"rename", "OLD NEW [--in-text]", 2, 2, false,
         [](const QStringList &args, const QCommandLineParser &parser, bool json) {
             return renameTag(args[0], args[1], parser, json);
         }},
        {"delete", "TAG [--in-text]", 1, 1, false,
         [](const QStringList &args, const QCommandLineParser &parser, bool json) {
             return renameTag(args[0], QString(), parser, json);
         }},
        {"exclude", "TAG", 1, 1, false,
         [](const QStringList &args, const QCommandLineParser &, bool) {
             contexts::tl_excludeTag(args[0]);
             return int(Success);
         }},
    };
    return list;
}

const std::vector<Action> &favoriteActions()
{
    static const std::vector<Action> list{
        {"toggle", "PATH", 1, 1, true,
         [](const QStringList &args, const QCommandLineParser &, bool json) {
             contexts::tl_toggleFavorite(args[0]);
             printValue(contexts::tl_isFavorite(args[0]), json);
             return int(Success);
         }},
        {"list", "", 0, 0, false,
         [](const QStringList &, const QCommandLineParser &, bool json) {
             printList(contexts::listOfFavorites(), json);
             return int(Success);
         }},
    };
    return list;
}

QString usage(const char *command, const std::vector<Action> &actions)
{
    QStringList lines;
    for (const Action &action : actions)
        lines << QStringLiteral("  tavelle %1 %2 %3")
                     .arg(QLatin1String(command), QLatin1String(action.name),
                          QLatin1String(action.arguments));
    return lines.join(u'\n');
}

int runAction(const char *command, const std::vector<Action> &actions,
              const QCommandLineParser &parser, const Invocation &in)
{
    const QString name = in.arguments.value(0);
    const auto action = std::find_if(actions.begin(), actions.end(),
                                     [&](const Action &a) { return name == a.name; });
    if (action == actions.end()) {
        QStringList names;
        for (const Action &a : actions)
            names << QLatin1String(a.name);
        return fail(QStringLiteral("Unknown action: %1 (one of %2)")
                        .arg(name, names.join(QStringLiteral(", "))),
                    Usage);
    }
    QStringList args = in.arguments.mid(1);
    if (args.size() < action->minimum || args.size() > action->maximum)
        return fail(QStringLiteral("usage: tavelle %1 %2 %3")
                        .arg(QLatin1String(command), QLatin1String(action->name),
                             QLatin1String(action->arguments))
                        .trimmed(),
                    Usage);
    if (action->firstIsItem) {
        const std::optional<QString> item = itemInLibrary(args[0], Inside::BelowRoot);
        if (!item)
            return Failure;
        args[0] = *item;
    }
    return action->run(args, parser, in.json);
}

void describeTags(QCommandLineParser &p)
{
    p.setApplicationDescription(
        QStringLiteral("Contexts of items: assigned by hand or written into the text as words "
                       "beginning with a marker (@home, #idea).\n\n") +
        usage("tags", tagActions()));
    p.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("What to do, as above."));
    p.addOption({kCounts, QStringLiteral("list: with the number of items of each.")});
    p.addOption({kFull, QStringLiteral("collect: forget the index and collect every item.")});
    p.addOption({kInText, QStringLiteral("rename, delete: change the words in the text too.")});
}

void describeFavorites(QCommandLineParser &p)
{
    p.setApplicationDescription(QStringLiteral("The favourites.\n\n") +
                                usage("fav", favoriteActions()));
    p.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("toggle or list."));
}

} // namespace

const std::vector<Command> &contextsCommands()
{
    static const std::vector<Command> commands{
        {"tags", "Contexts: list, items, of, add, rm, extract, collect, rename, delete, exclude.",
         true, describeTags,
         [](const QCommandLineParser &p, const Invocation &in) {
             return runAction("tags", tagActions(), p, in);
         }},
        {"fav", "Favourites: toggle an item, list them.", true, describeFavorites,
         [](const QCommandLineParser &p, const Invocation &in) {
             return runAction("fav", favoriteActions(), p, in);
         }},
    };
    return commands;
}

} // namespace tl::cli
