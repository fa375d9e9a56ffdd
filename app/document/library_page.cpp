#include "document/library_page.h"

#include "store/library_root.h"
#include "store/log.h"

#include <QDesktopServices>

namespace tl::app {

namespace {

Navigation::Kind kindOf(QWebEnginePage::NavigationType type)
{
    switch (type) {
    case QWebEnginePage::NavigationTypeTyped:
    case QWebEnginePage::NavigationTypeReload:
        return Navigation::Kind::Own;
    case QWebEnginePage::NavigationTypeLinkClicked:
        return Navigation::Kind::Link;
    case QWebEnginePage::NavigationTypeRedirect:
        return Navigation::Kind::Redirect;
    default:
        return Navigation::Kind::Other;
    }
}

} // namespace

LibraryPage::LibraryPage(QObject *parent) : QWebEnginePage(parent)
{
}

bool LibraryPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    const NavigationDecision decision = decideNavigation(
        {url, kindOf(type), isMainFrame, this->url(), m_webLocation}, store::libraryRoot());
    switch (decision.action) {
    case NavigationDecision::Action::Load:
        return true;
    case NavigationDecision::Action::SelectInLibrary:
        Q_EMIT libraryLinkActivated(decision.target);
        return false;
    case NavigationDecision::Action::OpenOutside:
        QDesktopServices::openUrl(QUrl(decision.target));
        return false;
    case NavigationDecision::Action::ImportNotes:
        Q_EMIT notesImportRequested(decision.target);
        return false;
    case NavigationDecision::Action::Refuse:
        break;
    }
    logLine(QStringLiteral("formatted view: refused %1").arg(url.toString()));
    return false;
}

void LibraryPage::sameDocumentLinkClicked(const QUrl &url)
{
    // The engine has moved already; only what the link asks beyond that counts.
    acceptNavigationRequest(url, NavigationTypeLinkClicked, true);
}

QWebEnginePage *LibraryPage::createWindow(WebWindowType)
{
    return nullptr;
}

void LibraryPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString &message,
                                           int line, const QString &source)
{
    logLine(QStringLiteral("page: %1 (%2:%3)").arg(message, source).arg(line));
}

} // namespace tl::app
