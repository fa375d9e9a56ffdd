#include "links/rewrite_journal.h"

#include "foundation/clock.h"
#include "store/library_folders.h"
#include "store/plist_file.h"

#include <QDir>
#include <QFile>
#include <QUuid>

namespace tl::links {

namespace {

QString journalFolder()
{
    return store::applicationSupportRootFolder() + QStringLiteral("/LinkRewrites");
}

const char *kindName(PendingRewrite::Kind kind)
{
    return kind == PendingRewrite::Kind::Book ? "book" : "document";
}

} // namespace

QString beginRewrite(const PendingRewrite &rewrite)
{
    QDir().mkpath(journalFolder());
    // Names sort in the order the notes were made.
    const QString name = QStringLiteral("%1-%2.plist")
                             .arg(tl::clock().now().toMSecsSinceEpoch(), 15, 10, QLatin1Char('0'))
                             .arg(QUuid::createUuid().toString(QUuid::Id128));
    const QString note = journalFolder() + u'/' + name;
    store::writePlistFile(note,
                          QVariantMap{{"kind", QLatin1String(kindName(rewrite.kind))},
                                      {"from", rewrite.from},
                                      {"to", rewrite.to},
                                      {"tag", QString::fromLatin1(rewrite.tag)}},
                          true);
    return note;
}

void finishRewrite(const QString &note)
{
    QFile::remove(note);
}

QList<std::pair<QString, PendingRewrite>> unfinishedRewrites()
{
    QList<std::pair<QString, PendingRewrite>> pending;
    const QDir folder(journalFolder());
    for (const QString &name :
         folder.entryList({QStringLiteral("*.plist")}, QDir::Files, QDir::Name)) {
        const QString note = folder.filePath(name);
        const QVariantMap entry = store::readPlistDictionary(note);
        PendingRewrite rewrite;
        rewrite.kind = entry.value("kind").toString() == u"book" ? PendingRewrite::Kind::Book
                                                                 : PendingRewrite::Kind::Document;
        rewrite.from = entry.value("from").toString();
        rewrite.to = entry.value("to").toString();
        rewrite.tag = entry.value("tag").toString().toLatin1();
        pending.append({note, rewrite});
    }
    return pending;
}

} // namespace tl::links
