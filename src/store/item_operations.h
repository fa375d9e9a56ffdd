#pragma once

#include <QString>

// The operations that change the shape of the library. Each keeps the places
// an item's data is spread over in step: its properties file, its parent's
// order lists, and the task, tag, attachment and link records.
namespace tl::store {

// Moves or renames the item; the target must be free. A document on screen
// is moved on the main queue instead, and the answer is then true at once.
// On failure nothing has changed.
bool tl_moveItemToPath(const QString &source, const QString &target);
// The move of a document on screen: queued on the main thread, leaving its
// attachments and links to the view.
void tl_moveItemToPathAsync(const QString &source, const QString &target);

// Copies the item to a free target, with its properties file and attachments
// when both lie in the library. On failure no partial copy is left.
bool tl_copyItemToPath(const QString &source, const QString &target);

// Removes the item and then its properties file. Task records, tags and
// order lists are the caller's.
bool tl_deleteItemAtPath(const QString &path);

// A copy beside the item: "NAME copy.EXT" for a file, "NAME copy" for a
// folder, numbered when taken. The new path, empty on failure.
QString tl_duplicateItemAtPath(const QString &path);

} // namespace tl::store
