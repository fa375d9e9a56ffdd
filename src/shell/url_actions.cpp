#include "shell/url_actions.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "platform/alerts.h"
#include "shell/shell_hooks.h"
#include "shell/url_grab.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QFileInfo>
#include <QUrl>

namespace tl::shell {

namespace {

bool g_handlingURLEvent = false;

QString decoded(const QString &text)
{
    return store::percentDecoded(text).value_or(text);
}

// The book named below the root, or the root when there is no such folder.
QString bookBelowRoot(const QString &relative)
{
    const QString root = store::libraryRoot();
    const QString book = path::appendingComponent(root, relative);
    return !relative.isEmpty() && QFileInfo(book).isDir() ? book : root;
}

// Title and parent taken out of an address split on "&"; the rest joined
// again is what the actions read.
struct AddressParts
{
    QString title;
    QString parent;
    QString working;
};

AddressParts takeTitleAndParent(const QString &url)
{
    AddressParts result;
    QStringList parts = url.split(u'&');
    if (parts.size() >= 2) {
        parts.removeIf([&result](const QString &part) {
            const QString lower = part.toLower();
            if (lower.startsWith(u"title="))
                result.title = decoded(part.mid(6));
            else if (lower.startsWith(u"parent="))
                result.parent = decoded(part.mid(7));
            else
                return false;
            return true;
        });
    }
    result.working = parts.join(u'&');
    return result;
}

void addNoteFromURL(const TavelleURL &url, AddressParts parts)
{
    QString body;
    for (const QString &part : url.query.split(u'&')) {
        const QString lower = part.toLower();
        if (lower.startsWith(u"title="))
            parts.title = decoded(part.mid(6));
        else if (lower.startsWith(u"parent="))
            parts.parent = decoded(part.mid(7));
        else
            body = decoded(part);
    }
    while (body.startsWith(u'/'))
        body.remove(0, 1);
    while (body.endsWith(u'/'))
        body.chop(1);
    addNote(body, parts.title, bookBelowRoot(parts.parent));
}

void searchFromURL(const TavelleURL &url)
{
    QString query = url.query;
    while (query.startsWith(u'/'))
        query.remove(0, 1);
    while (query.endsWith(u'/'))
        query.chop(1);
    QString scope;
    QString term;
    for (const QString &part : query.split(u'&')) {
        if (part.toLower().startsWith(u"scope="))
            scope = decoded(part.mid(6));
        else
            term = decoded(part);
    }
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.post(events::NewBookSelected,
                {{"path", path::appendingComponent(store::libraryRoot(), scope)}});
    center.post(events::StartSpotlightSearch, {{"term", term}});
}

void grabFromURL(const AddressParts &parts)
{
    static const QString prefix = QStringLiteral("tavelle://grab/");
    if (!parts.working.startsWith(prefix, Qt::CaseInsensitive))
        return;
    QString address = parts.working.mid(prefix.size());
    logLine(QStringLiteral("grabbing %1").arg(address));
    if (address.isEmpty())
        return;
    if (!address.contains(u"://") && address.contains(u"%3A//", Qt::CaseInsensitive)) {
        address.replace(QStringLiteral("%3A//"), QStringLiteral("://"), Qt::CaseInsensitive);
        address.replace(QStringLiteral("%3F"), QStringLiteral("?"), Qt::CaseInsensitive);
        address.replace(QStringLiteral("%3D"), QStringLiteral("="), Qt::CaseInsensitive);
    }
    if (!address.contains(u"://"))
        address.prepend(QStringLiteral("http://"));
    const QUrl url(address);
    if (!url.isValid() || url.host().isEmpty())
        return;
    grabURL(url, bookBelowRoot(parts.parent), parts.title);
}

void refuse(const QString &host)
{
    logLine(QStringLiteral("TL URL action: %1").arg(host));
    platform::alerts().run(
        {QLatin1String(kUnsupportedScheme) + QStringLiteral("\n\"%1\"").arg(host),
         QLatin1String(kUnsupportedSchemeInfo),
         {QStringLiteral("Close")}});
}

void showFromURL(const TavelleURL &url)
{
    QString relative = decoded(
        url.host.compare(u"show", Qt::CaseInsensitive) == 0 ? url.path : url.host + url.path);
    if (relative.isEmpty())
        relative = url.path;
    if (url.hasFragment)
        relative = store::tl_pathByAppendingAnchor(relative, url.fragment);
    QString full = path::appendingComponent(store::libraryRoot(), relative);
    if (!QFileInfo::exists(store::tl_pathWithoutAnchor(full)))
        full = shellHooks().findAlternativePath(full);
    if (full.isEmpty() || shellHooks().showInOpenWindow(full))
        return;
    NotificationCenter::defaultCenter().post(events::ShowItemAtPath, {{"path", full}});
}

} // namespace

std::optional<TavelleURL> parsedTavelleURL(const QString &url)
{
    static const QString scheme = QStringLiteral("tavelle://");
    if (!url.startsWith(scheme, Qt::CaseInsensitive))
        return std::nullopt;
    QString rest = url.mid(scheme.size());
    TavelleURL parsed;
    if (const qsizetype hash = rest.indexOf(u'#'); hash >= 0) {
        parsed.fragment = rest.mid(hash + 1);
        parsed.hasFragment = true;
        rest.truncate(hash);
    }
    if (const qsizetype question = rest.indexOf(u'?'); question >= 0) {
        parsed.query = rest.mid(question + 1);
        rest.truncate(question);
    }
    const qsizetype slash = rest.indexOf(u'/');
    parsed.host = slash < 0 ? rest : rest.left(slash);
    parsed.path = slash < 0 ? QString() : rest.mid(slash);
    return parsed;
}

void handleGetURLEvent(const QString &url)
{
    setHandlingURLEvent();
    if (url.section(u':', 0, 0).toLower() == u"tavelle")
        handleTavelleURL(url);
    else
        logLine(QStringLiteral("no TL scheme: %1").arg(url));
}

void setHandlingURLEvent()
{
    g_handlingURLEvent = true;
}

bool isHandlingURLEvent()
{
    return g_handlingURLEvent;
}

void handleTavelleURL(const QString &url)
{
    logLine(QStringLiteral("handling URL: %1").arg(url));
    const AddressParts parts = takeTitleAndParent(url);
    const std::optional<TavelleURL> working = parsedTavelleURL(parts.working);
    const std::optional<TavelleURL> whole = parsedTavelleURL(url);
    if (!working || !whole)
        return;
    const QString host = working->host.toLower();
    if (host == u"grab")
        grabFromURL(parts);
    else if (host == u"addnote")
        addNoteFromURL(*whole, parts);
    else if (host == u"search")
        searchFromURL(*whole);
    else if (host == u"append" || host == u"addnewdoc" || host == u"addnewtask")
        return;
    else if (host == u"wifi_sharing" || host == u"webdav_sync" || host == u"addnewsketch")
        refuse(working->host);
    else
        showFromURL(*working);
}

QString addNote(const QString &body, const QString &title, const QString &book)
{
    if (body.isEmpty())
        return {};
    QString name = title.isEmpty() ? store::tl_firstLineOfText(body) : title;
    name.replace(u'/', u'-');
    if (!store::knownExtensions().contains(store::lowerCasedExtension(name)))
        name = path::appendingExtension(name, QStringLiteral("txt"));
    const QString path = store::tl_uniqueNameForFileatPath(name, book);
    if (!store::tl_writeToFile(body, path, false, store::TextEncoding::UTF8))
        return {};
    store::tl_setCreationDate(path);
    return path;
}

} // namespace tl::shell
