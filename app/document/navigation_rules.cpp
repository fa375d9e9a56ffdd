#include "navigation_rules.h"

#include "browser/document_pages.h"
#include "store/item_path.h"

#include <QFileInfo>

namespace tl::app {

namespace {

using Action = NavigationDecision::Action;

bool isOutsideScheme(const QString &scheme)
{
    return scheme == u"http" || scheme == u"https" || scheme == u"mailto" || scheme == u"ftp";
}

NavigationDecision fileLink(const QUrl &url, const QString &libraryRoot)
{
    const QString file = QFileInfo(url.toLocalFile()).absoluteFilePath();
    if (!QFileInfo::exists(file))
        return {Action::Refuse, {}};
    if (!libraryRoot.isEmpty() && file.startsWith(libraryRoot + u'/')) {
        const QString anchor = url.fragment(QUrl::FullyDecoded);
        return {Action::SelectInLibrary,
                anchor.isEmpty() ? file : store::tl_pathByAppendingAnchor(file, anchor)};
    }
    return {Action::OpenOutside, url.toString()};
}

} // namespace

NavigationDecision decideNavigation(const Navigation &navigation, const QString &libraryRoot)
{
    const QUrl &url = navigation.url;
    if (!navigation.isMainFrame)
        return {Action::Refuse, {}};
    switch (navigation.kind) {
    case Navigation::Kind::Own:
        return {Action::Load, {}};
    case Navigation::Kind::Redirect:
        if (navigation.pageIsWebLocation && (url.scheme() == u"http" || url.scheme() == u"https"))
            return {Action::Load, {}};
        return {Action::Refuse, {}};
    default:
        break;
    }
    // The Evernote page's link asks for the import of the export it shows;
    // on any other page the same anchor is only an anchor.
    const QFileInfo file(url.toLocalFile());
    if (url.isLocalFile() && url.fragment() == QLatin1String(browser::kExtractEvernoteFragment) &&
        file.suffix().compare(QLatin1String("enex"), Qt::CaseInsensitive) == 0)
        return {Action::ImportNotes, file.absoluteFilePath()};
    if (url.adjusted(QUrl::RemoveFragment) == navigation.pageUrl.adjusted(QUrl::RemoveFragment) &&
        url.hasFragment())
        return {Action::Load, {}};
    if (navigation.kind != Navigation::Kind::Link)
        return {Action::Refuse, {}};
    const QString scheme = url.scheme();
    if (scheme == u"file")
        return fileLink(url, libraryRoot);
    if (scheme == u"tavelle") {
        const QString text = url.toString();
        if (store::tl_isTavelleURLSchemeAction(text))
            return {Action::Refuse, {}};
        const QString path = store::tl_pathFromTavelleURLScheme(text);
        return path.isEmpty() ? NavigationDecision{Action::Refuse, {}}
                              : NavigationDecision{Action::SelectInLibrary, path};
    }
    if (isOutsideScheme(scheme))
        return {Action::OpenOutside, url.toString()};
    return {Action::Refuse, {}};
}

} // namespace tl::app
