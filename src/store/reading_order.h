#pragma once

#include <QString>
#include <QStringList>

namespace tl::store {

// Every document below a book in reading order: the book's own documents
// in its list order, then each sub-book's documents, recursively, in the
// sub-books' order. Books themselves are not listed.
QStringList tl_sortedListOfAllItemsInHierarchy(const QString &book);

} // namespace tl::store
