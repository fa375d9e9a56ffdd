#pragma once

#include "search/search_query.h"

#include <QString>
#include <QStringList>

// A search that reads every item below the scope: slow, and the reference
// the index is held to.
namespace tl::search {

// Paths of the items below the scope that match every term, in walk order.
QStringList walkSearch(const Query &query, const QString &scope);

} // namespace tl::search
