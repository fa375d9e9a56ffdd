#pragma once

#include <QString>
#include <QStringList>
#include <functional>

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

// Material from the clipboard or a drop as a new document of the book,
// shown at once; the new path, or empty when nothing came of it.
QString addDocumentFromMimeData(const QMimeData &data, const QString &book);

// Whether a drop on a book brings anything: files, or material the
// pasteboard import takes (text, a page, a picture).
bool canDropOnBook(const QMimeData *data);
// The program's imports that files from elsewhere dropped on a book go to
// first (mail messages, outlines, Evernote exports, with their progress):
// given the paths and the book, it answers the paths it left. Installed by
// the window; without one every file is copied.
using DroppedFileImport = std::function<QStringList(const QStringList &paths, const QString &book)>;
void setDroppedFileImport(DroppedFileImport import);

// Files from elsewhere go to the import first, the rest come in as
// bringItemsIntoBook says; other material becomes a new
// document of the book, shown at once. Whether anything arrived.
bool dropOnBook(const QMimeData *data, const QString &book);

} // namespace tl::browser
