#pragma once

#include "browser/document_view_controller.h"

#include <QWidget>

class QWebEngineView;
class QWebChannel;

// The formatted view: rendered Markdown, HTML documents, images and web
// locations. A page is loaded once; later renderings of the same document
// replace its body in place, so the reader keeps the scroll position.
namespace tl::app {

class LibraryPage;
class PageBridge;

class FormattedView : public QWidget
{
    Q_OBJECT
public:
    explicit FormattedView(QWidget *parent = nullptr);

    // Loads the page. A page of the program's own replaces the one on show
    // without a load: only the body for the same document (the scroll
    // position stays), head and body for another.
    void showPage(const browser::FormattedPage &page, const QString &documentPath, double offset);
    void clear();
    // Goes to the element the anchor names, once the page is ready.
    void scrollToAnchor(const QString &anchor);
    // Types the text in at the caret of an editable page.
    void insertText(const QString &text);
    bool isEditable() const { return m_editable; }
    // Puts the markup in at the caret of an editable page.
    void insertHTML(const QString &html);
    // Whether the page on show takes edits; the next edit begins anew.
    void setEditable(bool editable);
    double scrollOffset() const { return m_offset; }
    // Whether the page's script answered since the last load.
    bool pageIsReady() const { return m_ready; }

Q_SIGNALS:
    void libraryLinkActivated(const QString &path);
    void notesImportRequested(const QString &exportPath);
    void checkboxClicked(const QString &itemHTML, int occurrence);
    // The first change of an edit, with the HTML before it.
    void editingBegins(const QString &innerHTML);
    void edited(const QString &innerHTML);
    void doubleClicked(const QString &elementHTML, const QString &htmlUpToElement);
    void frameUrlChanged(const QString &url);
    void scrolled(double y);
    void pageLoaded();

private:
    void load(const browser::FormattedPage &page);

    QWebEngineView *m_view;
    LibraryPage *m_page;
    QWebChannel *m_channel;
    PageBridge *m_bridge;
    QString m_documentPath;
    bool m_ready = false;
    bool m_editable = false;
    // The page on show is one of the program's own renderings.
    bool m_ownPage = false;
    bool m_editing = false;
    double m_offset = 0;
    double m_pendingOffset = 0;
    QString m_pendingAnchor;
};

} // namespace tl::app
