#include "browser/recent_searches.h"

#include "browser/browser_keys.h"
#include "platform/settings.h"

namespace tl::browser {

namespace {

const QString kKey = QLatin1String(keys::setting::RecentSearchTerms);

} // namespace

QStringList recentSearchTerms()
{
    QStringList terms;
    for (const QVariant &term : platform::settings().array(kKey))
        if (const QString text = term.toString(); !text.trimmed().isEmpty())
            terms << text;
    return terms.mid(0, kMaxRecentSearches);
}

void rememberSearchTerm(const QString &term)
{
    if (term.trimmed().isEmpty())
        return;
    QStringList terms = recentSearchTerms();
    terms.removeAll(term);
    terms.prepend(term);
    platform::settings().set(kKey, QVariant(terms.mid(0, kMaxRecentSearches)).toList());
}

void clearRecentSearchTerms()
{
    platform::settings().remove(kKey);
}

} // namespace tl::browser
