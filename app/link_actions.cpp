#include "link_actions.h"

#include "links/backlink_upkeep.h"
#include "links/link_forms.h"
#include "links/link_resolution.h"
#include "platform/alerts.h"
#include "store/item_path.h"

#include <QClipboard>
#include <QGuiApplication>

namespace tl::app {

void copyLinkToClipboard(const QString &path)
{
    QGuiApplication::clipboard()->setText(links::tl_copyURLToPastboardText(
        store::tl_pathWithoutAnchor(path), store::tl_pathAnchor(path)));
}

void copyMarkdownLinkToClipboard(const QString &path)
{
    QGuiApplication::clipboard()->setText(links::tl_copyMarkdownLinkText(path));
}

void checkLinks(const QString &book)
{
    const links::CheckReport report =
        links::tl_findBrokenBacklinksSilently(book, false, false, false);
    if (report.found.isEmpty())
        platform::alerts().run(
            {QStringLiteral("Finding Broken Backlinks"), report.message, {QStringLiteral("OK")}});
}

QString followLibraryLink(const QString &path, const QString &fromDocument)
{
    if (store::tl_fileExistsAtPathIsDirectory(store::tl_pathWithoutAnchor(path)))
        return path;
    return links::tl_findAlternativePathExcluding({path, {}, true, fromDocument});
}

} // namespace tl::app
