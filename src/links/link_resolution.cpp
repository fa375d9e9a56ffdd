#include "links/link_resolution.h"

#include "convert/envelope.h"
#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "links/backlinks.h"
#include "links/links_keys.h"
#include "links/tree_walk.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/side_jobs.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace tl::links {

namespace S = keys::setting;

namespace {

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

bool exists(const QString &path)
{
    return !path.isEmpty() && store::tl_fileExistsAtPathIsDirectory(path);
}

QString decoded(const QString &path)
{
    return store::percentDecoded(path).value_or(path);
}

QString nameWithoutExtension(const QString &path)
{
    return path::deletingExtension(path::lastComponent(path));
}

// The candidates of the folder, or the hit when a name matches the title.
struct FolderLook
{
    QString hit;
    QStringList others;
};

FolderLook lookInFolder(const QString &wanted)
{
    FolderLook look;
    const QString folder = path::deletingLastComponent(wanted);
    const QString title = nameWithoutExtension(wanted);
    const QString name = path::lastComponent(wanted);
    const QStringList entries = QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QString &entry : entries) {
        if (store::tl_pathIsExcludedFromDisplay(entry))
            continue;
        if (localizedCompare(nameWithoutExtension(entry), title) == 0 ||
            localizedCompare(entry, name) == 0) {
            look.hit = path::appendingComponent(folder, entry);
            return look;
        }
        look.others.append(entry);
    }
    std::sort(look.others.begin(), look.others.end(), LocalizedCaseInsensitiveLess());
    return look;
}

QString walkLibraryFor(const QString &title)
{
    static const QStringList skipped{".Trash", ".TLTrash", "TLResources", "TLImages"};
    QString exact;
    QString partial;
    walkTree(store::libraryRoot(), [&](const WalkEntry &entry) {
        if (!exact.isEmpty())
            return false;
        if (std::any_of(skipped.begin(), skipped.end(),
                        [&](const QString &s) { return entry.path.endsWith(s); }))
            return false;
        const QString name = path::lastComponent(entry.path).toLower();
        if (name.contains(title) && !name.endsWith(u".plist")) {
            if (path::deletingExtension(name) == title)
                exact = entry.path;
            else if (partial.isEmpty())
                partial = entry.path;
        }
        return true;
    });
    return exact.isEmpty() ? partial : exact;
}

QString contentHit(const QString &folder, const QStringList &candidates,
                   const QStringList &excluded, const QString &title)
{
    for (const QString &name : candidates) {
        if (excluded.contains(name) || !hasTextExtension(name))
            continue;
        const QString path = path::appendingComponent(folder, name);
        const std::optional<QString> text =
            store::tl_stringWithContentsOfFile(path, store::TextEncoding::UTF8);
        if (text && caseAndDiacriticInsensitiveContains(*text, title))
            return path;
    }
    return {};
}

// The first lines of a document made on following a link, with a link back
// to the document that holds the link when asked.
QString newDocumentText(const QString &path, const QString &backLink, bool withBackLink)
{
    const bool html = store::lowerCasedExtension(path) == u"html";
    const bool titleLine = setting(S::FormatFirstLineAsTitle);
    const QString title = nameWithoutExtension(path);
    QString text = html && titleLine ? QStringLiteral("<h1>%1</h1>").arg(title) : title;
    if (withBackLink) {
        const bool sameFolder = localizedCompare(path::deletingLastComponent(path),
                                                 path::deletingLastComponent(backLink)) == 0;
        const QString target =
            sameFolder ? path::lastComponent(backLink) : store::tl_normalizedPath(backLink);
        if (html)
            text += QStringLiteral("%1<a href=\"%2\">%3</a>")
                        .arg(titleLine ? QStringLiteral("\n") : QStringLiteral("\n<br><br>\n"),
                             target, nameWithoutExtension(backLink));
        else
            text += QStringLiteral("\n\n[[%1]]").arg(target);
    }
    return html ? convert::tl_createFormattedDocWithBody(path, text) : text;
}

void offerToCreate(const QString &path, const QString &backLink, bool hadTextExtension)
{
    const bool manageLinks = setting(S::ManageLinks);
    const bool offerBackLink = !manageLinks && !backLink.isEmpty();
    const store::ContextMenuLabel label = store::tl_pathFormattedForContextMenu(path, 1);
    platform::Alert alert;
    alert.message = QStringLiteral("The document \"%1\" does not exist")
                        .arg(label.faintPart + path::lastComponent(path));
    alert.informativeText = QStringLiteral("Do you want to create it?");
    alert.buttons << QStringLiteral("Create");
    if (offerBackLink)
        alert.buttons << QStringLiteral("Create with Backlink");
    alert.buttons << QStringLiteral("Cancel");
    const int answer = platform::alerts().run(alert);
    const bool withBackLink = offerBackLink && answer == 1;
    if (answer != 0 && !withBackLink)
        return;

    QDir().mkpath(path::deletingLastComponent(path));
    const QString text = newDocumentText(path, backLink, withBackLink);
    if (!store::tl_writeToFile(text, path, false, store::TextEncoding::UTF8))
        return;
    if (manageLinks && !backLink.isEmpty()) {
        tl_addBacklink(path, backLink);
        if (!hadTextExtension)
            store::tl_adjustLinksAndBacklinksAfterRenameFrom(path::deletingExtension(path), path);
    }
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.post(QLatin1String(events::HandleFileModificationInstantly), {{"path", path}});
    center.post(QLatin1String(events::ShowItemAtPath), {{"path", path}});
}

} // namespace

bool hasTextExtension(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    return extension == u"html" || store::plainTextExtensions().contains(extension);
}

QString tl_findAlternativePathExcluding(const ResolutionRequest &request)
{
    const QString &wanted = request.wanted;
    if (exists(decoded(wanted)))
        return decoded(wanted);
    const QString anchor = store::tl_pathAnchor(wanted);
    const QString bare = store::tl_pathWithoutAnchor(wanted);
    if (!anchor.isEmpty()) {
        if (exists(bare))
            return wanted;
        if (exists(decoded(bare)))
            return decoded(wanted);
    } else {
        QString straight = wanted;
        straight.replace(u'\u2019', u'\'');
        if (exists(straight))
            return straight;
    }

    const QString d = decoded(bare);
    const auto withAnchor = [&](const QString &path) {
        return store::tl_pathByAppendingAnchor(path, anchor);
    };
    FolderLook look;
    if (!hasTextExtension(d)) {
        look = lookInFolder(d);
        if (!look.hit.isEmpty())
            return withAnchor(look.hit);
    }
    const QString folder = path::deletingLastComponent(d);
    const QString title = nameWithoutExtension(d).trimmed().toLower();
    const QString compact = QString(title).remove(u' ');
    if (setting(S::WikiSmartResolveTitles)) {
        for (const QString &name : look.others) {
            if (caseAndDiacriticInsensitiveContains(name, title) ||
                caseAndDiacriticInsensitiveContains(name, compact))
                return withAnchor(path::appendingComponent(folder, name));
        }
        if (setting(S::WikiSmartResolveGlobally)) {
            const QString hit = walkLibraryFor(title);
            if (!hit.isEmpty())
                return withAnchor(hit);
        }
    }
    if (setting(S::WikiSmartResolveContents)) {
        const QString hit = contentHit(folder, look.others, request.excludedNames, title);
        if (!hit.isEmpty())
            return withAnchor(hit);
    }

    const bool hadTextExtension = hasTextExtension(d);
    if (!path::extension(d).isEmpty() && !hadTextExtension)
        return {};
    QString path = d;
    if (!hadTextExtension) {
        QString type = platform::settings().string(QStringLiteral("DefaultDocumentType"));
        path = path::appendingExtension(d, type.isEmpty() ? QStringLiteral("html") : type);
    }
    if (request.mayAsk)
        offerToCreate(path, request.backLink, hadTextExtension);
    return {};
}

} // namespace tl::links
