#pragma once

#include "foundation/notification_center.h"

#include <QObject>
#include <QString>

// The search field of the document list: a filter while a plain book shows,
// a query in Search Results, run 0.3 seconds after the last key. Its options
// panel chooses the scope and the field searched; a change runs the query
// again.
namespace tl::browser {

class DocumentListModel;

class SearchFieldController : public QObject
{
    Q_OBJECT
public:
    explicit SearchFieldController(DocumentListModel &model, QObject *parent = nullptr);

    // Typing in the field.
    void searchFieldDidChange(const QString &text);
    // Runs in a plain book or in Search Results; an empty text takes the
    // field's. True when a search ran.
    bool startSpotlightSearchWithString(const QString &text = {});
    // A search asked for as a whole (Return, a recent search, a request from
    // outside): the field shows the text, and once the search ran the text
    // joins the recent searches.
    void runSearchFor(const QString &text);
    // A search asked for by an event with "term".
    void handleStartSpotlightSearchNotification(const QString &term);

    // "Search: TEXT - N Hits" while Search Results shows, else "".
    QString title() const { return m_title; }

    // The options as the settings hold them: the scope (searchAllBooks) and
    // the option, 0 for searchTitle, 1 for searchContent, otherwise 2.
    enum SearchOption : int { TitleOnly = 0, ContentOnly = 1, TitleAndContent = 2 };
    static bool searchesAllBooks();
    static int searchOption();
    void setSearchesAllBooks(bool allBooks);
    void setSearchOption(int option);
    // The book a search of one book looks in.
    QString searchedBook() const;

    // The options panel; it shows with Search Results and hides with the filter.
    void showSearchOptions();
    void hideSearchoptions();
    void tl_toggleSearchStack();
    bool searchOptionsVisible() const { return m_optionsVisible; }

Q_SIGNALS:
    void titleChanged(const QString &title);
    // The panel opened or closed, or its controls are to take the settings anew.
    void searchOptionsChanged(bool visible);
    // The field's text set from outside.
    void fieldTextChanged(const QString &text);
    // The list turned to Search Results, or left them for the book.
    void searchResultsShown(bool shown);
    void recentSearchesChanged();

private:
    void leaveSearchResults();

    DocumentListModel &m_model;
    QString m_text;
    QString m_book;
    QString m_title;
    bool m_optionsVisible = false;
    ScopedObserver m_searchEvents;
};

} // namespace tl::browser
