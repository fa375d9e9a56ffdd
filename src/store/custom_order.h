#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// The manual order and the pins of a book's children, kept by name in the
// book's BookProperties.plist ("Books", "Notes", "Pinned").
namespace tl::store {

// Index of the first entry equal to the name by locale-aware comparison.
std::optional<qsizetype> tl_localizedIndexOfObject(const QStringList &list, const QString &name);

// The item's place in its parent's "Books" (a book) or "Notes" (a document);
// nothing for a missing item or an unlisted name.
std::optional<qsizetype> tl_customSequenceNrForPath(const QString &path);

// Keeps the parent's lists in step with a rename: the old name is replaced
// by the new one in place. An empty new path removes the name. A move to
// another book changes nothing. Written only when a list changed.
void tl_changeSortOrderToPath(const QString &oldPath, const QString &newPath);

// Unpins a pinned item, pins any other at the top.
void tl_pinToTop(const QString &path);

} // namespace tl::store
