// mv, cp, rm, trash, dup, pin, recent, file, name: item operations and the
// rules of document files.
#include "cli.h"
#include "links/rename_propagation.h"
#include "store/custom_order.h"
#include "store/document_file.h"
#include "store/duplicate_as.h"
#include "store/first_line.h"
#include "store/item_icons.h"
#include "store/item_operations.h"
#include "store/item_path.h"
#include "store/mime_types.h"
#include "store/properties.h"
#include "store/recent_items.h"
#include "store/safe_names.h"
#include "store/thumbnails.h"
#include "store/trash_operations.h"

#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <functional>

namespace tl::cli {

namespace {

const QString kUnique = QStringLiteral("unique");

std::function<void(QCommandLineParser &)> describeSourceAndDestination(const char *verb)
{
    return [verb](QCommandLineParser &p) {
        p.addPositionalArgument(
            QStringLiteral("SRC"),
            QStringLiteral("The item to %1%2.")
                .arg(QLatin1String(verb),
                     QLatin1String(qstrcmp(verb, "copy") == 0 ? ", from anywhere" : "")));
        p.addPositionalArgument(
            QStringLiteral("DEST"),
            QStringLiteral("The new path in the library, or a book of the library to put the item "
                           "in under its own name. A name that is taken is refused."));
        p.addOption({kUnique, QStringLiteral("Take a free name instead (\"Name 1.md\", \"Name "
                                             "2.md\", ...) when the name is taken.")});
    };
}

void describePath(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("The item, in the library."));
}

// DEST names the new path, or an existing book to put the item in under its
// own name.
QString destinationFor(const QString &source, const QString &destination)
{
    if (!store::tl_pathIsBook(destination))
        return destination;
    return destination + u'/' + QFileInfo(source).fileName();
}

int runMoveOrCopy(const QCommandLineParser &parser, const Invocation &in)
{
    const bool copy = in.command == u"cp";
    if (in.arguments.size() != 2)
        return fail(QStringLiteral("usage: tavelle %1 [--unique] SRC DEST").arg(in.command), Usage);
    // Copies may come in from outside; everything else stays in the library.
    const std::optional<QString> source =
        copy ? std::optional<QString>(absolutePath(in.arguments[0]))
             : itemInLibrary(in.arguments[0], Inside::BelowRoot);
    const std::optional<QString> destination =
        source ? itemInLibrary(in.arguments[1], Inside::RootAllowed) : std::nullopt;
    if (!destination)
        return Failure;
    if (!QFileInfo::exists(*source) && !QFileInfo(*source).isSymLink())
        return fail(QStringLiteral("No such item: %1").arg(*source));
    // The destination is resolved, so a name inside it stays in the library.
    std::optional<QString> target = destinationFor(*source, *destination);
    if (QFileInfo::exists(*target) || QFileInfo(*target).isSymLink()) {
        if (!parser.isSet(kUnique))
            return fail(
                QStringLiteral("Already exists: %1 (--unique takes a free name)").arg(*target));
        target = store::tl_uniqueNameForFileatPath(QFileInfo(*target).fileName(),
                                                   QFileInfo(*target).path());
    }
    const bool done = copy ? store::tl_copyItemToPath(*source, *target)
                           : store::tl_moveItemToPath(*source, *target);
    // Links are rewritten on the serial queue; the command ends after them.
    links::waitForLinkRewrites();
    if (!done)
        return fail(QStringLiteral("%1 failed: %2").arg(copy ? "Copy" : "Move", *source));
    printValue(*target, in.json);
    return Success;
}

int runRemove(const QCommandLineParser &, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("usage: tavelle rm PATH"), Usage);
    const std::optional<QString> path = itemInLibrary(in.arguments[0], Inside::BelowRoot);
    if (!path)
        return Failure;
    if (!store::tl_deleteItemAtPath(*path))
        return fail(QStringLiteral("Cannot delete: %1").arg(*path));
    return Success;
}

int runTrash(const QCommandLineParser &, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("usage: tavelle trash PATH"), Usage);
    const std::optional<QString> path = itemInLibrary(in.arguments[0], Inside::BelowRoot);
    if (!path)
        return Failure;
    if (!QFileInfo::exists(*path))
        return fail(QStringLiteral("No such item: %1").arg(*path));
    const QList<store::TrashedItem> trashed = store::moveItemsToTrashAfterConfirmation({*path});
    if (trashed.isEmpty())
        return QFileInfo::exists(*path)
                   ? fail(QStringLiteral("Not moved to the trash: %1").arg(*path))
                   : Success;
    printValue(trashed.first().itemInTrash, in.json);
    return Success;
}

const std::vector<std::pair<const char *, std::function<QString(const QString &)>>> &
duplicateKinds()
{
    using namespace store;
    static const std::vector<std::pair<const char *, std::function<QString(const QString &)>>>
        kinds{
            {"txt", tl_duplicateItemAsPlaintext},
            {"md", tl_duplicateItemAsMarkdown},
            {"html", tl_duplicateItemAsFormattedDocument},
            {"fountain", tl_duplicateItemAsFountain},
            {"tex", tl_duplicateAsLatex},
            {"rtf", [](const QString &p) { return tl_duplicateItemAs(p, QStringLiteral("rtf")); }},
            {"doc", [](const QString &p) { return tl_duplicateItemAs(p, QStringLiteral("doc")); }},
            {"docx",
             [](const QString &p) { return tl_duplicateItemAs(p, QStringLiteral("docx")); }},
            {"odt", [](const QString &p) { return tl_duplicateItemAs(p, QStringLiteral("odt")); }},
            {"webarchive",
             [](const QString &p) { return tl_duplicateItemAs(p, QStringLiteral("webarchive")); }},
        };
    return kinds;
}

void describeDuplicate(QCommandLineParser &p)
{
    describePath(p);
    QStringList kinds;
    for (const auto &kind : duplicateKinds())
        kinds << QString::fromLatin1(kind.first);
    p.addOption({QStringLiteral("as"),
                 QStringLiteral("Duplicate in another kind: %1.").arg(kinds.join(u'|')),
                 QStringLiteral("KIND")});
}

int runDuplicate(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("usage: tavelle dup PATH [--as KIND]"), Usage);
    const std::optional<QString> path = itemInLibrary(in.arguments[0], Inside::BelowRoot);
    if (!path)
        return Failure;
    if (!QFileInfo::exists(*path))
        return fail(QStringLiteral("No such item: %1").arg(*path));
    std::function<QString(const QString &)> duplicate = store::tl_duplicateItemAtPath;
    if (parser.isSet(QStringLiteral("as"))) {
        const QString kind = parser.value(QStringLiteral("as"));
        duplicate = nullptr;
        for (const auto &[name, operation] : duplicateKinds())
            if (kind == QLatin1String(name))
                duplicate = operation;
        if (!duplicate)
            return fail(QStringLiteral("Unknown kind: %1").arg(kind), Usage);
    }
    const QString copy = duplicate(*path);
    if (copy.isEmpty())
        return fail(QStringLiteral("Nothing was written for %1").arg(*path));
    printValue(copy, in.json);
    return Success;
}

int runPin(const QCommandLineParser &, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("usage: tavelle pin PATH"), Usage);
    const std::optional<QString> path = itemInLibrary(in.arguments[0], Inside::BelowRoot);
    if (!path)
        return Failure;
    if (!QFileInfo::exists(*path))
        return fail(QStringLiteral("No such item: %1").arg(*path));
    store::tl_pinToTop(*path);
    const bool pinned = store::tl_isPinned(*path);
    if (in.json)
        printValue(QVariantMap{{"path", *path}, {"pinned", pinned}}, true);
    else
        printLine(pinned ? QStringLiteral("pinned") : QStringLiteral("unpinned"));
    return Success;
}

void describeRecent(QCommandLineParser &p)
{
    p.addOption(
        {QStringLiteral("add"), QStringLiteral("Add an item first."), QStringLiteral("PATH")});
    p.addOption({QStringLiteral("verified"),
                 QStringLiteral("Drop gone items and show the list as the menu does.")});
}

int runRecent(const QCommandLineParser &parser, const Invocation &in)
{
    if (!in.arguments.isEmpty())
        return fail(QStringLiteral("usage: tavelle recent [--add PATH] [--verified]"), Usage);
    if (parser.isSet(QStringLiteral("add"))) {
        const std::optional<QString> path =
            itemInLibrary(parser.value(QStringLiteral("add")), Inside::BelowRoot);
        if (!path)
            return Failure;
        store::tl_addToRecentItems(*path);
    }
    printList(parser.isSet(QStringLiteral("verified"))
                  ? store::TLStaticFunctions::verifiedListOfRecentItems()
                  : store::recentItems(),
              in.json);
    return Success;
}

// file and name: one rule per word, each taking a fixed number of arguments.
struct Rule
{
    const char *name;
    const char *arguments;
    // Where the rule reads beyond its arguments, for the help.
    const char *note;
    std::function<std::optional<QVariant>(const QStringList &)> apply;
    // What is wrong with the arguments, if anything.
    std::function<QString(const QStringList &)> check = [](const QStringList &) {
        return QString();
    };
};

QString standardInput()
{
    QFile in;
    if (!in.open(stdin, QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = in.readAll();
    return store::decodedTextOfUnknownEncoding(bytes)
        .value_or(store::DecodedText{QString(), store::TextEncoding::UTF8})
        .text;
}

QString iconText(const store::ItemIcon &icon)
{
    return icon.kind == store::ItemIcon::Kind::Named
               ? icon.value
               : QStringLiteral("%1 (%2)").arg(icon.value,
                                               icon.kind == store::ItemIcon::Kind::Picture
                                                   ? QStringLiteral("picture")
                                                   : QStringLiteral("theme"));
}

const std::vector<Rule> &fileRules()
{
    using namespace store;
    static const std::vector<Rule> rules{
        {"encoding", "FILE", "",
         [](const QStringList &a) -> std::optional<QVariant> {
             const QString path = absolutePath(a[0]);
             if (!QFileInfo(path).isFile())
                 return std::nullopt;
             const TextEncoding encoding = tl_textEncodingOfFile(path);
             return QVariantMap{{"encoding", int(encoding)}, {"name", textEncodingName(encoding)}};
         }},
        {"title", "", "reads the text from standard input",
         [](const QStringList &) { return QVariant(tl_firstLineOfText(standardInput())); }},
        {"mime", "EXT", "",
         [](const QStringList &a) { return QVariant(tl_mimeTypeForExtension(a[0])); }},
        {"ext", "MIME", "",
         [](const QStringList &a) { return QVariant(tl_extensionForMimeType(a[0])); }},
        {"icon", "PATH", "",
         [](const QStringList &a) {
             return QVariant(iconText(tl_iconForPath(absolutePath(a[0]))));
         }},
        {"thumbnail", "PATH", "",
         [](const QStringList &a) -> std::optional<QVariant> {
             const std::optional<QString> thumbnail = tl_thumbnailForPath(absolutePath(a[0]));
             return thumbnail ? std::optional<QVariant>(*thumbnail) : std::nullopt;
         }},
    };
    return rules;
}

const std::vector<Rule> &nameRules()
{
    using namespace store;
    static const std::vector<Rule> rules{
        {"safe", "TEXT", "",
         [](const QStringList &a) { return QVariant(tl_escapeIllegalCharacters(a[0])); }},
        {"unique", "DIR NAME", "",
         [](const QStringList &a) {
             return QVariant(tl_uniqueNameForFileatPath(a[1], absolutePath(a[0])));
         },
         [](const QStringList &a) {
             if (!QFileInfo(absolutePath(a[0])).isDir())
                 return QStringLiteral("Not a folder: %1").arg(a[0]);
             if (a[1].isEmpty() || a[1].contains(u'/'))
                 return QStringLiteral("Not a file name: %1").arg(a[1]);
             return QString();
         }},
    };
    return rules;
}

QString ruleSyntax(const char *command, const Rule &rule)
{
    return QStringLiteral("tavelle %1 %2 %3")
        .arg(QLatin1String(command), QLatin1String(rule.name), QLatin1String(rule.arguments))
        .trimmed();
}

QString rulesUsage(const char *command, const std::vector<Rule> &rules)
{
    QStringList lines;
    for (const Rule &rule : rules)
        lines << ruleSyntax(command, rule);
    return QStringLiteral("usage: ") + lines.join(QStringLiteral("\n       "));
}

std::function<void(QCommandLineParser &)> describeRules(const std::vector<Rule> &(*rules)())
{
    return [rules](QCommandLineParser &p) {
        QStringList forms;
        for (const Rule &r : rules())
            forms << (QStringLiteral("%1 %2")
                          .arg(QLatin1String(r.name), QLatin1String(r.arguments))
                          .trimmed() +
                      (*r.note ? QStringLiteral(" (%1)").arg(QLatin1String(r.note)) : QString()));
        p.addPositionalArgument(QStringLiteral("RULE"),
                                QStringLiteral("The rule and its arguments, in this order: ") +
                                    forms.join(QStringLiteral("; ")) + u'.');
        p.addPositionalArgument(QStringLiteral("ARGS"), QStringLiteral("The rule's arguments."),
                                QStringLiteral("[ARGS...]"));
    };
}

std::function<int(const QCommandLineParser &, const Invocation &)>
runRules(const std::vector<Rule> &(*rules)())
{
    return [rules](const QCommandLineParser &, const Invocation &in) {
        const char *command = in.command == u"file" ? "file" : "name";
        for (const Rule &rule : rules()) {
            if (in.arguments.value(0) != QLatin1String(rule.name))
                continue;
            const QStringList arguments = in.arguments.mid(1);
            const qsizetype expected =
                QString::fromLatin1(rule.arguments).split(u' ', Qt::SkipEmptyParts).size();
            if (arguments.size() != expected)
                return fail(QStringLiteral("usage: ") + ruleSyntax(command, rule), Usage);
            if (const QString wrong = rule.check(arguments); !wrong.isEmpty())
                return fail(QStringLiteral("%1 (usage: %2)").arg(wrong, ruleSyntax(command, rule)),
                            Usage);
            const std::optional<QVariant> result = rule.apply(arguments);
            if (!result)
                return fail(QStringLiteral("Nothing for %1").arg(arguments.join(u' ')));
            printValue(*result, in.json);
            return int(Success);
        }
        return fail(rulesUsage(command, rules()), Usage);
    };
}

} // namespace

const std::vector<Command> &itemCommands()
{
    static const std::vector<Command> commands{
        {"mv", "Move or rename an item with its properties; a taken name is refused.", true,
         describeSourceAndDestination("move"), runMoveOrCopy},
        {"cp", "Copy an item, from anywhere, with its properties; a taken name is refused.", true,
         describeSourceAndDestination("copy"), runMoveOrCopy},
        {"rm", "Delete an item and its properties file.", true, describePath, runRemove},
        {"trash", "Move an item and its properties file to the trash.", true, describePath,
         runTrash},
        {"dup", "Duplicate an item beside itself, or in another kind.", true, describeDuplicate,
         runDuplicate},
        {"pin", "Pin an item to the top of its book, or unpin it.", true, describePath, runPin},
        {"recent", "List the recent items, newest first.", true, describeRecent, runRecent},
        {"file", "Encodings, titles, MIME types, icons and thumbnails of files.", false,
         describeRules(fileRules), runRules(fileRules)},
        {"name", "Safe and free names for new items.", false, describeRules(nameRules),
         runRules(nameRules)},
    };
    return commands;
}

} // namespace tl::cli
