#include "sync/conflict_names.h"

#include "foundation/regex.h"

#include <QDir>
#include <QFileInfo>
#include <array>

namespace tl::sync {

namespace {

// Conflict copies use the named groups stem, ext, date and, where the
// client writes them, time and computer.
struct ClientRules
{
    SyncClient client;
    const char *name;
    const char *copyPattern;
    const char *dateFormat;
    const char *timeFormat;
    // Group "target": the file the stub stands for.
    const char *placeholderPattern;
    const char *ownFilePattern;
    // An entry of the synced folder's top that tells the client.
    const char *markerPattern;
};

// Order is the order of detection when one folder holds several markers.
constexpr std::array<ClientRules, 3> kClients{{
    {SyncClient::Syncthing, "Syncthing",
     R"(^(?<stem>.+)\.sync-conflict-(?<date>\d{8})-(?<time>\d{6})-(?<computer>[A-Z0-9]{7})(?<ext>\.[^.]+)?$)",
     "yyyyMMdd", "HHmmss", nullptr,
     R"(^(?:\.syncthing\..+\.tmp|~syncthing~.+\.tmp|\.stfolder|\.stignore|\.stversions)$)",
     R"(^\.stfolder$)"},
    {SyncClient::Nextcloud, "Nextcloud",
     R"(^(?<stem>.+) \(conflicted copy (?<date>\d{4}-\d{2}-\d{2}) (?<time>\d{6})\)(?<ext>\.[^.]+)?$)",
     "yyyy-MM-dd", "HHmmss", R"(^(?<target>.+)\.(?:nextcloud|owncloud)$)",
     R"(^(?:\._?sync_[0-9a-f]+\.db(?:-wal|-shm)?|\.owncloudsync\.log|\.sync-exclude\.lst|.+\.(?:nextcloud|owncloud))$)",
     R"(^\._?sync_[0-9a-f]+\.db$)"},
    {SyncClient::Dropbox, "Dropbox",
     R"(^(?<stem>.+) \((?<computer>.+)['’]s conflicted copy (?<date>\d{4}-\d{2}-\d{2})(?: \(\d+\))?\)(?<ext>\.[^.]+)?$)",
     "yyyy-MM-dd", nullptr, nullptr, R"(^(?:\.dropbox|\.dropbox\.cache)$)", R"(^\.dropbox$)"},
}};

const ClientRules &rulesOf(SyncClient client)
{
    return kClients[static_cast<size_t>(client)];
}

struct CompiledRules
{
    Regex copy;
    Regex placeholder; // invalid, matching nothing, where the client has none
    Regex ownFile;
    Regex marker;
};

const CompiledRules &compiledRules(SyncClient client)
{
    static const auto table = [] {
        std::array<CompiledRules, kClients.size()> compiled;
        for (size_t i = 0; i < kClients.size(); ++i) {
            const ClientRules &rules = kClients[i];
            compiled[i] = {Regex(QString::fromUtf8(rules.copyPattern)),
                           rules.placeholderPattern
                               ? Regex(QString::fromUtf8(rules.placeholderPattern))
                               : Regex(),
                           Regex(QString::fromUtf8(rules.ownFilePattern)),
                           Regex(QString::fromUtf8(rules.markerPattern))};
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
    const Regex &regex = compiledRules(client).copy;
    const std::optional<RegexMatch> match = regex.match(fileName);
    if (!match)
        return std::nullopt;
    const QDate date =
        QDate::fromString(group(regex, *match, fileName, "date"), QLatin1String(rules.dateFormat));
    QTime time(0, 0);
    if (rules.timeFormat)
        time = QTime::fromString(group(regex, *match, fileName, "time"),
                                 QLatin1String(rules.timeFormat));
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return ConflictCopyName{group(regex, *match, fileName, "stem") +
                                group(regex, *match, fileName, "ext"),
                            QDateTime(date, time), group(regex, *match, fileName, "computer")};
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
            dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
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

} // namespace tl::sync
