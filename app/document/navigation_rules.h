#pragma once

#include <QString>
#include <QUrl>

// What the formatted view does with a navigation: the page's own loads go
// ahead, links into the library select a document, links out of it go to
// the desktop, and nothing else loads.
namespace tl::app {

struct Navigation
{
    enum class Kind { Own, Link, Redirect, Other };
    QUrl url;
    Kind kind = Kind::Other;
    bool isMainFrame = true;
    // The address of the page on show, to tell an anchor in it.
    QUrl pageUrl;
    // The page loads a web location, whose server may redirect.
    bool pageIsWebLocation = false;
};

struct NavigationDecision
{
    enum class Action { Load, SelectInLibrary, OpenOutside, ImportNotes, Refuse };
    Action action = Action::Refuse;
    // The document (with "#anchor") to select, the address to open, or the
    // Evernote export whose notes are to come in.
    QString target;
};

NavigationDecision decideNavigation(const Navigation &navigation, const QString &libraryRoot);

} // namespace tl::app
