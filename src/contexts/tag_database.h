#pragma once

#include "contexts/context_words.h"

#include <QString>
#include <QStringList>

// The tag database: an item's "Tags" property is the truth; the index
// (TagDB.plist, tag -> items) and the list of available tags are derived
// from it, and every reader heals what it finds stale.
namespace tl::contexts {

// AvailableTags.txt without duplicates; nothing when empty.
QStringList tl_unfilteredListOfAllTags();
// The same after purging the index of items gone from the disk; a tag born
// of a marker dies with its last item.
QStringList tl_listOfAllAvailableTags();
// The item's "Tags" without duplicates, less those not available.
QStringList tl_verifiedTagList(const QString &path);
// Absolute paths of existing items that bear the tag; entries the items no
// longer confirm leave the index.
QStringList tl_listOfAllItemsForTag(const QString &tag);
// Items of every tag, in the order of the first.
QStringList itemsBearingAllTags(const QStringList &tags);
// The size of the index entry, for a badge; done tasks left out under
// hideDoneTasks.
int tl_numberOfItemsForTag(const QString &tag);

// Whether the tag's first character is a context marker.
bool tl_tagIsManagedAutomatically(const QString &tag);

void tl_setTag(const QString &path, const QString &tag);
void tl_clearTag(const QString &path, const QString &tag);
// Removes every tag but the favourite mark.
void tl_clearAllTags(const QString &path);

// Merges one item's "Tags" into both stores; the argument may name the
// item or its properties file.
void tl_collectTagsInPlist(const QString &path);
// The same for many items, in batches of the stores: an import's notes.
void tl_collectTagsInPlists(const QStringList &paths);
// Changes an item's tags by two sets, then collects them.
void tl_updateContextsRemoving(const QString &path, const TagSet &removed, const TagSet &added);
// Adds the contexts found in the text to the item.
void tl_collectTagsFromText(const QString &path, const QString &text);

// Moves an item (and for a book its descendants) in the index; an empty
// target deletes. Works before and after the move on disk.
void tl_changePathInTagDBToPath(const QString &source, const QString &target);

bool tl_isFavorite(const QString &path);
void tl_setFavorite(const QString &path);
void tl_clearFavorite(const QString &path);
void tl_toggleFavorite(const QString &path);
// Absolute paths of the favourites in their stored order.
QStringList listOfFavorites();

// The six default contexts, written when the list is empty. Answers
// whether it wrote them.
bool installDefaultContexts();

} // namespace tl::contexts
