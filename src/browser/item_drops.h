#pragma once

#include <QString>
#include <QStringList>

class QMimeData;

// Items dropped on a book, from the outline, the list or the file manager.
namespace tl::browser {

// The local paths among the drag's file URLs.
QStringList droppedPaths(const QMimeData *data);

// Items of the library move into the book; items from elsewhere are copied
// in, the originals left alone. A book never goes into itself or below
// itself, and an item already in the book stays. Each takes a free name.
// Answers how many arrived.
int bringItemsIntoBook(const QStringList &paths, const QString &book);

} // namespace tl::browser
