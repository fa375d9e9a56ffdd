#pragma once

#include <QStringList>

// The recent searches the search field offers again: newest first, each
// once, kept in the settings so they outlive the session.
namespace tl::browser {

// As many as a menu shows at a glance.
inline constexpr int kMaxRecentSearches = 10;

QStringList recentSearchTerms();
// Puts the term in front, dropping an earlier copy and the oldest beyond
// the limit; a blank term changes nothing.
void rememberSearchTerm(const QString &term);
void clearRecentSearchTerms();

} // namespace tl::browser
