#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

// The object the page's own script talks to over the web channel.
namespace tl::app {

class PageBridge : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

Q_SIGNALS:
    // To the page.
    void bodyPushed(const QString &html);
    void pagePushed(const QString &html, double y);
    void scrollRequested(double y);
    void anchorRequested(const QString &anchor);
    void textInserted(const QString &text);
    void editableChanged(bool editable);
    void htmlInserted(const QString &html);

    // From the page, re-emitted for the view.
    void ready();
    void pushed();
    void scrollChanged(double y);
    void checkboxClicked(const QString &itemHTML, int occurrence);
    void editingBeginsWith(const QString &innerHTML);
    void editedTo(const QString &innerHTML);
    void doubleClickedAt(const QString &elementHTML, const QString &htmlUpToElement);
    void sameDocumentLinkActivated(const QUrl &url);

public Q_SLOTS:
    void pageReady() { Q_EMIT ready(); }
    void pushDone() { Q_EMIT pushed(); }
    void scrolled(double y) { Q_EMIT scrollChanged(y); }
    void checkboxToggled(const QString &itemHTML, int occurrence)
    {
        Q_EMIT checkboxClicked(itemHTML, occurrence);
    }
    void editingBegins(const QString &innerHTML) { Q_EMIT editingBeginsWith(innerHTML); }
    void edited(const QString &innerHTML) { Q_EMIT editedTo(innerHTML); }
    void doubleClicked(const QString &elementHTML, const QString &htmlUpToElement)
    {
        Q_EMIT doubleClickedAt(elementHTML, htmlUpToElement);
    }
    void sameDocumentLinkClicked(const QString &url)
    {
        Q_EMIT sameDocumentLinkActivated(QUrl(url));
    }
};

} // namespace tl::app
