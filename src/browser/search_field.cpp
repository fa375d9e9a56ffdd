#include "browser/search_field.h"

#include "browser/browser_keys.h"
#include "browser/document_list.h"
#include "browser/document_list_model.h"
#include "browser/library_search.h"
#include "browser/recent_searches.h"
#include "browser/smart_books.h"
#include "foundation/events.h"
#include "foundation/scheduler.h"
#include "platform/settings.h"
#include "store/library_root.h"

namespace tl::browser {

namespace S = keys::setting;

namespace {

const QString kQueryKey = QStringLiteral("search field query");

} // namespace

SearchFieldController::SearchFieldController(DocumentListModel &model, QObject *parent)
    : QObject(parent), m_model(model),
      m_searchEvents(QLatin1String(events::StartSpotlightSearch),
                     [this](const QString &, const QVariantMap &payload) {
                         // After the book the same address selects.
                         const QString term = payload.value(QStringLiteral("term")).toString();
                         QMetaObject::invokeMethod(
                             this, [this, term] { handleStartSpotlightSearchNotification(term); },
                             Qt::QueuedConnection);
                     })
{
}

void SearchFieldController::searchFieldDidChange(const QString &text)
{
    Scheduler::main().cancel(kQueryKey);
    m_text = text;
    TLKSDocumentListViewController &list = m_model.list();
    if (text.isEmpty()) {
        leaveSearchResults();
        return;
    }
    if (list.smartBookType == SearchResults) {
        list.searchFilter.clear();
        Scheduler::main().schedule(kQueryKey, 0.3, [this] { startSpotlightSearchWithString(); });
        Q_EMIT searchOptionsChanged(m_optionsVisible);
    } else if (list.smartBookType == OrdinaryBook) {
        hideSearchoptions();
        m_model.setFilter(text);
    }
}

bool SearchFieldController::startSpotlightSearchWithString(const QString &text)
{
    TLKSDocumentListViewController &list = m_model.list();
    if (list.smartBookType != OrdinaryBook && list.smartBookType != SearchResults)
        return false;
    const QString query = text.isEmpty() ? m_text : text;
    if (query.isEmpty()) {
        leaveSearchResults();
        return false;
    }
    if (list.smartBookType == OrdinaryBook)
        m_book = list.path;
    const SearchOutcome results = runLibrarySearch(query, searchScope(m_book),
                                                   searchFieldFromSettings(), SearchSource::Index);
    m_title = results.title;
    list.smartBookType = SearchResults;
    list.searchFilter.clear();
    m_model.reloadBookInBackground();
    Q_EMIT titleChanged(m_title);
    Q_EMIT searchResultsShown(true);
    showSearchOptions();
    return true;
}

void SearchFieldController::runSearchFor(const QString &text)
{
    Scheduler::main().cancel(kQueryKey);
    m_text = text;
    Q_EMIT fieldTextChanged(text);
    if (!startSpotlightSearchWithString(text))
        return;
    rememberSearchTerm(text);
    Q_EMIT recentSearchesChanged();
}

void SearchFieldController::handleStartSpotlightSearchNotification(const QString &term)
{
    platform::Settings &settings = platform::settings();
    TLKSDocumentListViewController &list = m_model.list();
    if (list.smartBookType == OrdinaryBook && list.path != store::libraryRoot())
        settings.remove(QLatin1String(S::SearchAllBooks));
    settings.remove(QLatin1String(S::SearchTitle));
    settings.remove(QLatin1String(S::SearchContent));
    if (!settings.boolValue(QLatin1String(S::SearchfieldVisibleInDocList)))
        settings.set(QLatin1String(S::SearchfieldVisibleInDocList), true);
    runSearchFor(term);
}

void SearchFieldController::leaveSearchResults()
{
    TLKSDocumentListViewController &list = m_model.list();
    m_text.clear();
    hideSearchoptions();
    const bool inResults = list.smartBookType == SearchResults;
    if (inResults) {
        list.smartBookType = OrdinaryBook;
        list.path = m_book.isEmpty() ? store::libraryRoot() : m_book;
        m_title.clear();
        Q_EMIT titleChanged(m_title);
    }
    m_model.setFilter({});
    if (inResults) {
        m_model.reloadBookInBackground();
        Q_EMIT searchResultsShown(false);
    }
}

bool SearchFieldController::searchesAllBooks()
{
    return platform::settings().boolValue(QLatin1String(S::SearchAllBooks));
}

int SearchFieldController::searchOption()
{
    switch (searchFieldFromSettings()) {
    case search::Field::Name:
        return TitleOnly;
    case search::Field::Content:
        return ContentOnly;
    default:
        return TitleAndContent;
    }
}

void SearchFieldController::setSearchesAllBooks(bool allBooks)
{
    platform::Settings &settings = platform::settings();
    if (allBooks)
        settings.set(QLatin1String(S::SearchAllBooks), true);
    else
        settings.remove(QLatin1String(S::SearchAllBooks));
    if (m_model.list().smartBookType == SearchResults)
        startSpotlightSearchWithString();
}

void SearchFieldController::setSearchOption(int option)
{
    platform::Settings &settings = platform::settings();
    settings.remove(QLatin1String(S::SearchTitle));
    settings.remove(QLatin1String(S::SearchContent));
    if (option == TitleOnly)
        settings.set(QLatin1String(S::SearchTitle), true);
    else if (option == ContentOnly)
        settings.set(QLatin1String(S::SearchContent), true);
    if (m_model.list().smartBookType == SearchResults)
        startSpotlightSearchWithString();
}

QString SearchFieldController::searchedBook() const
{
    const TLKSDocumentListViewController &list = m_model.list();
    return list.smartBookType == SearchResults ? m_book : list.path;
}

void SearchFieldController::showSearchOptions()
{
    m_optionsVisible = true;
    Q_EMIT searchOptionsChanged(true);
}

void SearchFieldController::hideSearchoptions()
{
    if (!m_optionsVisible)
        return;
    m_optionsVisible = false;
    Q_EMIT searchOptionsChanged(false);
}

void SearchFieldController::tl_toggleSearchStack()
{
    if (m_optionsVisible)
        hideSearchoptions();
    else
        showSearchOptions();
}

} // namespace tl::browser
