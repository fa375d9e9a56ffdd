#include "search/search_walk.h"

#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "search/searchable_items.h"
#include "search/searchable_text.h"

#include <optional>

namespace tl::search {

namespace {

class ItemMatcher
{
public:
    ItemMatcher(const ItemStamp &item, const SearchableText &reader)
        : m_item(item), m_reader(reader),
          m_name(caseAndDiacriticFolded(path::lastComponent(item.path)))
    {
    }

    bool matches(const PreparedTerm &term, Field field)
    {
        if (field != Field::Content && !term.foldedText.isEmpty() &&
            m_name.contains(term.foldedText))
            return true;
        return field != Field::Name && wordsContainPhrase(words(), term.words);
    }

private:
    const QStringList &words()
    {
        if (!m_words) {
            std::optional<QString> text;
            if (!m_item.isFolder)
                text = m_reader.textOf(m_item.path);
            m_words = text ? searchWords(*text) : QStringList();
        }
        return *m_words;
    }

    const ItemStamp &m_item;
    const SearchableText &m_reader;
    QString m_name;
    std::optional<QStringList> m_words;
};

} // namespace

QStringList walkSearch(const Query &query, const QString &scope)
{
    const QList<PreparedTerm> terms = preparedTerms(query.terms);
    if (terms.isEmpty())
        return {};
    const SearchableText reader;
    QStringList hits;
    forEachSearchableItem(scope, [&](const ItemStamp &item) {
        ItemMatcher matcher(item, reader);
        for (const PreparedTerm &term : terms)
            if (!matcher.matches(term, query.field))
                return;
        hits << item.path;
    });
    return hits;
}

} // namespace tl::search
