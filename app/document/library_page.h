#pragma once

#include "document/navigation_rules.h"

#include <QWebEnginePage>

// The formatted view's page: it decides every navigation itself and opens
// no windows.
namespace tl::app {

class LibraryPage : public QWebEnginePage
{
    Q_OBJECT
public:
    explicit LibraryPage(QObject *parent = nullptr);

    void setShowsWebLocation(bool web) { m_webLocation = web; }
    // A link to a place in the page on show, which the engine follows
    // without asking: decided like any other link.
    void sameDocumentLinkClicked(const QUrl &url);

Q_SIGNALS:
    // A link to a document of the library, with "#anchor" when it has one.
    void libraryLinkActivated(const QString &path);
    // The Evernote page's link: the export's notes are asked for.
    void notesImportRequested(const QString &exportPath);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage *createWindow(WebWindowType type) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString &message,
                                  int line, const QString &source) override;

private:
    bool m_webLocation = false;
};

} // namespace tl::app
