// links, backlinks, attachments: what documents refer to, what refers to
// them, and their attachments.
#include "cli.h"
#include "foundation/path_string.h"
#include "links/attachments.h"
#include "links/backlink_upkeep.h"
#include "links/backlinks.h"
#include "links/link_resolution.h"
#include "links/reference_scan.h"
#include "links/rename_propagation.h"
#include "store/document_file.h"
#include "store/library_root.h"

#include <QDir>
#include <QFileInfo>

namespace tl::cli {

namespace {

const QString kVerified = QStringLiteral("verified");
const QString kSinceLast = QStringLiteral("since-last");
const QString kRepair = QStringLiteral("repair");
const QString kRemove = QStringLiteral("remove");
const QString kDryRun = QStringLiteral("dry-run");

// Rewrites a crash interrupted are finished before anything reads links.
void finishInterrupted()
{
    for (const QString &line : links::finishInterruptedRewrites())
        std::fprintf(stderr, "%s\n", qPrintable(line));
    links::waitForLinkRewrites();
}

std::optional<QString> existingItem(const QString &argument, Inside inside)
{
    const std::optional<QString> path = itemInLibrary(argument, inside);
    if (path && !QFileInfo::exists(*path)) {
        fail(QStringLiteral("No such item: %1").arg(*path));
        return std::nullopt;
    }
    return path;
}

// The book argument, or the root without one.
std::optional<QString> bookArgument(const QStringList &arguments, qsizetype index)
{
    if (arguments.size() <= index)
        return store::libraryRoot();
    return existingItem(arguments[index], Inside::RootAllowed);
}

int listReferences(const QCommandLineParser &parser, const Invocation &in)
{
    const std::optional<QString> document = existingItem(in.arguments[0], Inside::BelowRoot);
    if (!document)
        return Failure;
    if (parser.isSet(kVerified)) {
        printList(links::tl_verifiedArrayOfReferencedDocuments(*document), in.json);
        return Success;
    }
    QVariantList records;
    QStringList lines;
    for (const links::Reference &r :
         links::tl_arrayOfAllReferencesInDocumentIncludingRanges(*document)) {
        records << QVariantMap{{"path", r.path}, {"range", r.rangeText()}};
        lines << r.path + u' ' + r.rangeText();
    }
    if (in.json)
        printValue(records, true);
    else
        printList(lines, false);
    return Success;
}

int refresh(const QCommandLineParser &parser, const Invocation &in)
{
    const std::optional<QString> book = bookArgument(in.arguments, 1);
    if (!book)
        return Failure;
    const links::RefreshReport report =
        links::tl_refreshAllBacklinksStartingAtReferenceDate(*book, parser.isSet(kSinceLast));
    printValue(in.json ? QVariant(QVariantMap{{"documents", report.documents},
                                              {"references", report.references},
                                              {"message", report.message}})
                       : QVariant(report.message),
               in.json);
    return Success;
}

int check(const QCommandLineParser &parser, const Invocation &in)
{
    if (parser.isSet(kRepair) && parser.isSet(kRemove))
        return fail(QStringLiteral("--repair and --remove exclude each other"), Usage);
    const std::optional<QString> book = bookArgument(in.arguments, 1);
    if (!book)
        return Failure;
    const links::CheckReport report = links::tl_findBrokenBacklinksSilently(
        *book, true, parser.isSet(kRepair), parser.isSet(kRemove));
    links::waitForLinkRewrites();
    if (in.json) {
        printValue(QVariantMap{{"items", report.items},
                               {"mismatches", report.mismatches},
                               {"found", report.found},
                               {"message", report.message}},
                   true);
    } else {
        printLine(report.message);
        printList(report.found, false);
    }
    return Success;
}

int resolve(const Invocation &in)
{
    if (in.arguments.size() != 3)
        return fail(QStringLiteral("usage: tavelle links resolve DOC TARGET"), Usage);
    const std::optional<QString> document = existingItem(in.arguments[1], Inside::BelowRoot);
    if (!document)
        return Failure;
    const QString &target = in.arguments[2];
    const QString wanted = QDir::cleanPath(
        target.startsWith(u'/')
            ? store::libraryRoot() + target
            : path::appendingComponent(path::deletingLastComponent(*document), target));
    const QString found = links::tl_findAlternativePathExcluding({wanted, {}, false, *document});
    if (found.isEmpty())
        return fail(QStringLiteral("Not found: %1").arg(target));
    printValue(found, in.json);
    return Success;
}

void describeLinks(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("PATH"),
                            QStringLiteral("A document, or: refresh [BOOK], check [BOOK], "
                                           "resolve DOC TARGET."));
    p.addOption({kVerified, QStringLiteral("List the existing items the document refers to.")});
    p.addOption({kSinceLast, QStringLiteral("refresh: only documents changed since the last "
                                            "refresh of the whole library.")});
    p.addOption({kRepair, QStringLiteral("check: repair the broken backlinks found.")});
    p.addOption({kRemove, QStringLiteral("check: remove every backlink instead.")});
}

int runLinks(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.isEmpty())
        return fail(QStringLiteral("usage: tavelle links PATH [--verified] | refresh [BOOK] "
                                   "[--since-last] | check [BOOK] [--repair|--remove] | resolve "
                                   "DOC TARGET"),
                    Usage);
    finishInterrupted();
    const QString &verb = in.arguments[0];
    if (verb == u"refresh" && in.arguments.size() <= 2)
        return refresh(parser, in);
    if (verb == u"check" && in.arguments.size() <= 2)
        return check(parser, in);
    if (verb == u"resolve")
        return resolve(in);
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("usage: tavelle links PATH [--verified]"), Usage);
    return listReferences(parser, in);
}

int runBacklinks(const QCommandLineParser &, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("usage: tavelle backlinks PATH"), Usage);
    finishInterrupted();
    const std::optional<QString> item = existingItem(in.arguments[0], Inside::RootAllowed);
    if (!item)
        return Failure;
    printList(links::backlinksOf(*item), in.json);
    return Success;
}

void describeItem(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("The item, in the library."));
}

void describeAttachments(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("list DOC, or clean BOOK."));
    p.addOption({kDryRun, QStringLiteral("clean: only list what would go to the trash.")});
}

int runAttachments(const QCommandLineParser &parser, const Invocation &in)
{
    const QString verb = in.arguments.value(0);
    if (in.arguments.size() != 2 || (verb != u"list" && verb != u"clean"))
        return fail(QStringLiteral("usage: tavelle attachments list DOC | clean BOOK [--dry-run]"),
                    Usage);
    const std::optional<QString> item = existingItem(in.arguments[1], Inside::BelowRoot);
    if (!item)
        return Failure;
    if (verb == u"clean") {
        printList(links::tl_cleanupImagesFolder(*item, parser.isSet(kDryRun)), in.json);
        return Success;
    }
    QStringList attachments = links::embeddedPhotosOf(*item);
    if (const auto file = store::tl_stringWithContentsOfFile(*item)) {
        for (const QString &photo : links::tl_setOfEmbeddedPhotos(file->text))
            if (!attachments.contains(photo))
                attachments << photo;
    }
    printList(attachments, in.json);
    return Success;
}

} // namespace

const std::vector<Command> &linksCommands()
{
    static const std::vector<Command> commands{
        {"links", "List, refresh, check and resolve links between documents.", true, describeLinks,
         runLinks},
        {"backlinks", "List the documents that link to an item.", true, describeItem, runBacklinks},
        {"attachments", "List a document's attachments, or clean a book's unused ones.", true,
         describeAttachments, runAttachments},
    };
    return commands;
}

} // namespace tl::cli
