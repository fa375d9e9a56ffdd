// conflicts: the conflicts a sync client left in the library, settled by the
// program's own rules or by the user's choice.
#include "cli.h"
#include "store/library_root.h"
#include "sync/resolution.h"
#include "sync/sync_sources.h"

#include <QFileInfo>

namespace tl::cli {

namespace {

const QString kResolve = QStringLiteral("resolve");

void describeConflicts(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("keep"),
                            QStringLiteral("keep PATH current|conflict|both: settle a document."));
    p.addOption({kResolve, QStringLiteral("Settle what needs no choice: task details, tags, "
                                          "property files and lists.")});
}

// Each conflict with how it is settled: the program's files by their rule,
// documents by the user.
int listConflicts(sync::SyncStatusSource &source, bool settle, bool json)
{
    const QString root = store::libraryRoot();
    const sync::ReportOutcome outcome = sync::tl_fileListReceived(source, settle);
    QVariantList records;
    QStringList lines;
    const auto add = [&](const QString &path, const QString &resolution) {
        records << QVariantMap{{"path", path}, {"resolution", resolution}};
        lines << resolution + u'\t' + path;
    };
    for (const QString &path : outcome.settled)
        add(path, sync::conflictKindName(sync::conflictKindOf(path, root)));
    for (const QString &normalized : outcome.conflicts)
        add(root + normalized, QStringLiteral("choice"));
    if (json)
        printValue(records, true);
    else
        printList(lines, false);
    return Success;
}

int keep(sync::SyncStatusSource &source, const Invocation &in)
{
    const QString choice = in.arguments.value(2);
    if (in.arguments.size() != 3 ||
        (choice != u"current" && choice != u"conflict" && choice != u"both"))
        return fail(QStringLiteral("usage: tavelle conflicts keep PATH current|conflict|both"),
                    Usage);
    const std::optional<QString> item = itemInLibrary(in.arguments[1], Inside::BelowRoot);
    if (!item)
        return Failure;
    sync::VersionStore &versions = source.versions();
    if (versions.unresolvedConflictVersions(*item).isEmpty())
        return fail(QStringLiteral("No conflict versions of: %1").arg(*item));
    QStringList kept;
    bool settled = true;
    if (choice == u"current")
        settled = sync::tl_resolveConflictKeepingCurrentVersion(versions, *item);
    else if (choice == u"conflict")
        settled = sync::tl_resolveConflictKeepingConflictVersion(versions, *item);
    else
        kept = sync::tl_resolveConflictKeepingBothVersionsIsShared(versions, *item, false);
    if (!settled || !versions.unresolvedConflictVersions(*item).isEmpty())
        return fail(QStringLiteral("Could not settle the conflict of: %1").arg(*item));
    sync::forgetUnresolvedConflict(*item);
    printList(kept, in.json);
    return Success;
}

int runConflicts(const QCommandLineParser &parser, const Invocation &in)
{
    const std::unique_ptr<sync::SyncStatusSource> source =
        sync::syncSourceForLibrary(store::libraryRoot());
    if (source->name().isEmpty())
        sync::clearSyncState();
    if (in.arguments.value(0) == u"keep")
        return keep(*source, in);
    if (!in.arguments.isEmpty())
        return fail(QStringLiteral("usage: tavelle conflicts [--resolve] | keep PATH "
                                   "current|conflict|both"),
                    Usage);
    return listConflicts(*source, parser.isSet(kResolve), in.json);
}

} // namespace

const std::vector<Command> &syncCommands()
{
    static const std::vector<Command> commands{
        {"conflicts", "List and settle the conflicts a sync client left in the library.", true,
         describeConflicts, runConflicts},
    };
    return commands;
}

} // namespace tl::cli
