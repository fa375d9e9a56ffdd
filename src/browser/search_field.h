#pragma once

#include "foundation/notification_center.h"

#include <QObject>
#include <QString>

// The search field of the document list: a filter while a plain book shows,
// a query in Search Results, run 0.3 seconds after the last key.
namespace tl::browser {

class DocumentListModel;

class SearchFieldController : public QObject
{
    Q_OBJECT
public:
    explicit SearchFieldController(DocumentListModel &model, QObject *parent = nullptr);

    // Typing in the field.
    void searchFieldDidChange(const QString &text);
    // Return, or a search from outside: runs in a plain book or in Search
    // Results; an empty text takes the field's.
    void startSpotlightSearchWithString(const QString &text = {});
    // A search asked for by an event with "term".
    void handleStartSpotlightSearchNotification(const QString &term);

    // "Search: TEXT - N Hits" while Search Results shows, else "".
    QString title() const { return m_title; }

Q_SIGNALS:
    void titleChanged(const QString &title);
    // The field's text set from outside.
    void fieldTextChanged(const QString &text);

private:
    void leaveSearchResults();

    DocumentListModel &m_model;
    QString m_text;
    QString m_book;
    QString m_title;
    ScopedObserver m_searchEvents;
};

} // namespace tl::browser
