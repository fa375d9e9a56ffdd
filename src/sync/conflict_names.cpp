#include "sync/conflict_names.h"

#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "store/library_root.h"

#include <QDir>
#include <QFileInfo>
#include <array>
#include <mutex>

namespace tl::sync {

namespace {

// Conflict copies use the named groups stem, ext, date and, where the
// client writes them, time and computer.
struct CopyRule
{
    const char *pattern;
    const char *dateFormat;
    const char *timeFormat;
};

struct ClientRules
{
    SyncClient client;
    const char *name;
    // Tried in order; a client that changed its naming keeps the older rule.
    std::array<CopyRule, 2> copies;
    // Group "target": the file the stub stands for.
    const char *placeholderPattern;
    const char *ownFilePattern;
    // An entry of the synced folder's top that tells the client.
    const char *markerPattern;
};

// Order is the order of detection when one folder holds several markers.
constexpr std::array<ClientRules, 3> kClients{{
    {SyncClient::Syncthing,
     "Syncthing",
     {{{R"(^(?<stem>.+)\.sync-conflict-(?<date>\d{8})-(?<time>\d{6})-(?<computer>[A-Z0-9]{7})(?<ext>\.[^.]+)?$)",
        "yyyyMMdd", "HHmmss"},
       {}}},
     nullptr,
     R"(^(?:\.syncthing\..+\.tmp|~syncthing~.+\.tmp|\.stfolder|\.stignore|\.stversions)$)",
     R"(^\.stfolder$)"},
    {SyncClient::Nextcloud,
     "Nextcloud",
     {{{R"(^(?<stem>.+) \(conflicted copy (?<date>\d{4}-\d{2}-\d{2}) (?<time>\d{6})\)(?<ext>\.[^.]+)?$)",
        "yyyy-MM-dd", "HHmmss"},
       // ownCloud, and Nextcloud before it took the wording above.
       {R"(^(?<stem>.+)_conflict-(?<date>\d{8})-(?<time>\d{6})(?<ext>\.[^.]+)?$)", "yyyyMMdd",
        "HHmmss"}}},
     R"(^(?<target>.+)\.(?:nextcloud|owncloud)$)",
     R"(^(?:\._?sync_[0-9a-f]+\.db(?:-wal|-shm)?|\.owncloudsync\.log|\.sync-exclude\.lst|.+\.(?:nextcloud|owncloud))$)",
     R"(^\._?sync_[0-9a-f]+\.db$)"},
    {SyncClient::Dropbox,
     "Dropbox",
     {{{R"(^(?<stem>.+) \((?<computer>.+)['’]s conflicted copy (?<date>\d{4}-\d{2}-\d{2})(?: \(\d+\))?\)(?<ext>\.[^.]+)?$)",
        "yyyy-MM-dd", nullptr},
       {}}},
     nullptr,
     R"(^(?:\.dropbox|\.dropbox\.cache)$)",
     R"(^\.dropbox$)"},
}};

const ClientRules &rulesOf(SyncClient client)
{
    return kClients[static_cast<size_t>(client)];
}

struct CompiledRules
{
    std::array<Regex, 2> copies; // invalid, matching nothing, where the client has no rule
    Regex placeholder;
    Regex ownFile;
    Regex marker;
};

Regex compiledOrNone(const char *pattern)
{
    return pattern ? Regex(QString::fromUtf8(pattern)) : Regex();
}

const CompiledRules &compiledRules(SyncClient client)
{
    static const auto table = [] {
        std::array<CompiledRules, kClients.size()> compiled;
        for (size_t i = 0; i < kClients.size(); ++i) {
            const ClientRules &rules = kClients[i];
            compiled[i] = {
                {compiledOrNone(rules.copies[0].pattern), compiledOrNone(rules.copies[1].pattern)},
                compiledOrNone(rules.placeholderPattern),
                compiledOrNone(rules.ownFilePattern),
                compiledOrNone(rules.markerPattern)};
        }
        return compiled;
    }();
    return table[static_cast<size_t>(client)];
}

QString group(const Regex &regex, const RegexMatch &match, QStringView text, const char *name)
{
    return match.capturedString(text, regex.groupNumber(QLatin1String(name)));
}

} // namespace

QString clientName(SyncClient client)
{
    return QLatin1String(rulesOf(client).name);
}

std::optional<ConflictCopyName> parseConflictCopyName(SyncClient client, const QString &fileName)
{
    const ClientRules &rules = rulesOf(client);
    for (size_t i = 0; i < rules.copies.size(); ++i) {
        const CopyRule &rule = rules.copies[i];
        const Regex &regex = compiledRules(client).copies[i];
        const std::optional<RegexMatch> match = regex.match(fileName);
        if (!match)
            continue;
        const QDate date = QDate::fromString(group(regex, *match, fileName, "date"),
                                             QLatin1String(rule.dateFormat));
        QTime time(0, 0);
        if (rule.timeFormat)
            time = QTime::fromString(group(regex, *match, fileName, "time"),
                                     QLatin1String(rule.timeFormat));
        if (!date.isValid() || !time.isValid())
            continue;
        return ConflictCopyName{group(regex, *match, fileName, "stem") +
                                    group(regex, *match, fileName, "ext"),
                                QDateTime(date, time), group(regex, *match, fileName, "computer")};
    }
    return std::nullopt;
}

std::optional<QString> placeholderTarget(SyncClient client, const QString &fileName)
{
    const Regex &regex = compiledRules(client).placeholder;
    const std::optional<RegexMatch> match = regex.match(fileName);
    if (!match)
        return std::nullopt;
    return group(regex, *match, fileName, "target");
}

bool isClientOwnFile(SyncClient client, const QString &fileName)
{
    return compiledRules(client).ownFile.isMatch(fileName);
}

std::optional<SyncClient> detectSyncClient(const QString &folder)
{
    QDir dir(folder);
    while (true) {
        const QStringList entries =
            dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                          // A folder above the library may hold very many entries.
                          QDir::NoSort);
        for (const ClientRules &rules : kClients) {
            const Regex &marker = compiledRules(rules.client).marker;
            for (const QString &entry : entries)
                if (marker.isMatch(entry))
                    return rules.client;
        }
        if (dir.isRoot() || !dir.cdUp())
            return std::nullopt;
    }
}

std::optional<SyncClient> syncClientOfLibrary(const QString &root)
{
    if (root.isEmpty())
        return std::nullopt;
    static std::mutex mutex;
    static QString lastRoot;
    static std::optional<SyncClient> client;
    const std::lock_guard lock(mutex);
    if (root != lastRoot) {
        lastRoot = root;
        client = detectSyncClient(root);
    }
    return client;
}

bool isConflictCopyInLibrary(const QString &path)
{
    const QString name = path::lastComponent(path);
    // Every client's copies say so in their names: most names need no more.
    if (!name.contains(u"conflict"))
        return false;
    const std::optional<SyncClient> client = syncClientOfLibrary(store::libraryRoot());
    return client && parseConflictCopyName(*client, name).has_value();
}

} // namespace tl::sync
